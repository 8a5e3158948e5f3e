#pragma once

#include "store/FileMO.h"
#include "support/PropertyValue.h"

#include <optional>
#include <string>

namespace tavrin {

/// A file as tags see it: three dates and a dictionary of metadata, each read when it is first asked for.
/// Belongs to the thread that uses it.
class TaggedFile {
  public:
    enum class Date { shooting, creation, modification };

    virtual ~TaggedFile() = default;
    /// Seconds since 2001-01-01 00:00:00 UTC.
    [[nodiscard]] virtual std::optional<double> date(Date which) = 0;
    /// May start the metadata tool, and blocks until it has answered. Valid as long as this object.
    [[nodiscard]] virtual const PropertyDictionary& tagDictionary() = 0;
};

/// A row of the store: its dates are the stored ones, and its metadata is kept in the row once it is read.
class TaggedRow final : public TaggedFile {
  public:
    explicit TaggedRow(FileMO& row) : fileMo(row) {}

    [[nodiscard]] std::optional<double> date(Date which) override;
    [[nodiscard]] const PropertyDictionary& tagDictionary() override;

  private:
    FileMO& fileMo;
};

/// A file of which only the path is known, in bytes: everything is asked of the file itself.
class TaggedPath final : public TaggedFile {
  public:
    explicit TaggedPath(std::string filePath) : path(std::move(filePath)) {}

    [[nodiscard]] std::optional<double> date(Date which) override;
    [[nodiscard]] const PropertyDictionary& tagDictionary() override;

  private:
    std::string path;
    std::optional<PropertyDictionary> tags;
};

} // namespace tavrin
