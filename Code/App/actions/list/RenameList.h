#pragma once

#include "actions/list/TextColumn.h"

#include <optional>

namespace tavrin {

/// The content of a list file: new names, in a two-column list with the names or paths that they are for.
class RenameList {
  public:
    RenameList() = default;
    /// A list of new names alone.
    explicit RenameList(TextColumn names);
    /// `files` and `names` are equally long.
    RenameList(TextColumn files, TextColumn names, bool holdsPaths);

    [[nodiscard]] const TextColumn& fileNames() const { return files; }
    [[nodiscard]] const TextColumn& newNames() const { return names; }
    /// Whether the first column holds full paths.
    [[nodiscard]] bool usesFullPosixPath() const { return holdsPaths; }

    /// The new name beside the first file name that equals the key; valid as long as the list.
    [[nodiscard]] std::optional<std::u16string_view> newNameFor(std::u16string_view key) const;

  private:
    /// A place of the table of file names; 0 is an empty one, else the row counted from 1.
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t row = 0;
    };

    void makeTable();
    /// The place of the key, or the empty one where it belongs.
    [[nodiscard]] std::size_t slotOf(std::u16string_view key, std::uint32_t hash) const;

    TextColumn files;
    TextColumn names;
    bool holdsPaths = true;
    std::vector<Slot> table; ///< of a power of two, at most half full; empty where there are no file names
};

} // namespace tavrin
