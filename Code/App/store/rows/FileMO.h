#pragma once

#include "platform/metadata/MetadataTool.h"
#include "store/rows/NodeRow.h"
#include "support/values/PropertyValue.h"

#include <functional>
#include <optional>
#include <string>

namespace tavrin {

class StoreContext;

/// A handle on one `File` row of a context, valid until the context is reset. Beside the stored attributes it
/// keeps decoded values of its own: the metadata dictionary and the three dates. Belongs to the thread of its
/// context; cheap to make and to point at the next row.
class FileMO {
  public:
    /// Reads all metadata of a file by its path.
    using TagReader = std::function<FileMetadata(const std::string& path)>;

    explicit FileMO(StoreContext& context, RowId id = noRow);

    /// Points at another row and forgets what was decoded.
    void moveTo(RowId id);
    [[nodiscard]] RowId id() const { return row; }

    /// Absolute path in bytes.
    [[nodiscard]] std::string fullPath() const;
    /// Seconds since 2001-01-01 00:00:00 UTC, as stored.
    [[nodiscard]] double modDate() const;
    [[nodiscard]] double crDate() const;
    [[nodiscard]] double exif() const;

    [[nodiscard]] std::optional<double> modificationDate() const;
    [[nodiscard]] std::optional<double> creationDate() const;
    /// Absent when the stored value is that of a file without a shooting date.
    [[nodiscard]] std::optional<double> exifDate() const;

    /// Makes sure that the metadata dictionary is there: kept, decoded from the row, or read from the file
    /// once, also when the file had none. What could not be read is not kept: it is asked for again when this
    /// has pointed at another row.
    void loadTagDictionary(const TagReader& reader);
    [[nodiscard]] const PropertyDictionary& tagDictionary() const;
    /// Why the dictionary could not be read; empty where it was, or was not asked for.
    [[nodiscard]] const std::string& tagFailure() const { return failure; }

  private:
    void obtainTagsFromFileSystem(const TagReader& reader);

    StoreContext* context;
    RowId row;
    std::optional<PropertyDictionary> tags;
    std::string failure;
};

} // namespace tavrin
