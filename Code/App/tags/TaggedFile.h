#pragma once

#include "store/rows/FileMO.h"
#include "support/values/PropertyValue.h"

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
    /// Why the dictionary that was asked for could not be read, as a part of a sentence; else empty.
    [[nodiscard]] virtual std::string failure() const { return {}; }
};

/// A row of the store: its dates are the stored ones, and its metadata is kept in the row once it is read.
class TaggedRow final : public TaggedFile {
  public:
    explicit TaggedRow(FileMO& row) : fileMo(row) {}

    [[nodiscard]] std::optional<double> date(Date which) override;
    [[nodiscard]] const PropertyDictionary& tagDictionary() override;
    [[nodiscard]] std::string failure() const override { return fileMo.tagFailure(); }

  private:
    FileMO& fileMo;
};

/// A file of which only the path is known, in bytes: everything is asked of the file itself.
class TaggedPath final : public TaggedFile {
  public:
    explicit TaggedPath(std::string filePath) : path(std::move(filePath)) {}

    [[nodiscard]] std::optional<double> date(Date which) override;
    [[nodiscard]] const PropertyDictionary& tagDictionary() override;
    [[nodiscard]] std::string failure() const override { return metadata ? metadata->failure : ""; }

  private:
    std::string path;
    std::optional<FileMetadata> metadata;
};

} // namespace tavrin
