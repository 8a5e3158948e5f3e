#pragma once

#include "tags/TaggedFile.h"

#include <map>

namespace tavrin::test {

/// A file whose dates and metadata the test tells; counts how often the metadata is asked for.
class FakeTaggedFile final : public TaggedFile {
  public:
    explicit FakeTaggedFile(PropertyDictionary dictionary = {}) : tags(std::move(dictionary)) {}

    [[nodiscard]] std::optional<double> date(Date which) override {
        const auto date = dates.find(which);
        return date == dates.end() ? std::nullopt : std::optional(date->second);
    }
    [[nodiscard]] const PropertyDictionary& tagDictionary() override {
        ++dictionaryReads;
        return tags;
    }

    [[nodiscard]] std::string failure() const override { return reason; }

    std::string reason;
    std::map<Date, double> dates;
    PropertyDictionary tags;
    int dictionaryReads = 0;
};

} // namespace tavrin::test
