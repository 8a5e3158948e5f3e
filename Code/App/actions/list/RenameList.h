#pragma once

#include "actions/list/ListFile.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// An array of many texts in one piece of memory. It holds 4 G code units at most.
class TextColumn {
  public:
    /// Makes room, in code units.
    void reserve(std::size_t capacity) { units.reserve(capacity); }
    void append(std::u16string_view text) {
        if (text.size() > std::numeric_limits<std::uint32_t>::max() - units.size())
            throw std::length_error("a column of texts is full");
        units += text;
        ends.push_back(static_cast<std::uint32_t>(units.size()));
    }
    /// Valid until the next change.
    [[nodiscard]] std::u16string_view operator[](std::size_t index) const {
        const std::size_t begin = index == 0 ? 0 : ends[index - 1];
        return std::u16string_view(units).substr(begin, ends[index] - begin);
    }
    [[nodiscard]] std::size_t size() const { return ends.size(); }
    [[nodiscard]] bool empty() const { return ends.empty(); }

  private:
    std::u16string units;
    std::vector<std::uint32_t> ends;
};

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

/// Reads a list of two columns: the name or the full path of a file, a tab, its new name. One object reads
/// one list.
class TabDelimitedFileListLoader {
  public:
    /// Whether the names of files are compared, and therefore stored, in lower case.
    void setIgnoreCase(bool ignores) { ignoreCase = ignores; }

    /// Takes the content of a list. 0, or the number of the line that failed, from 1; blank lines don't
    /// count.
    [[nodiscard]] int load(std::string_view bytes);

    [[nodiscard]] TextColumn& getFileArray() { return fileArray; }
    [[nodiscard]] TextColumn& getNewNameArray() { return newNameArray; }
    /// Whether the first column holds full paths; it does in a list without lines.
    [[nodiscard]] bool usesFullPosixPath() const { return holdsPaths; }

  private:
    [[nodiscard]] bool readLine(ListScanner& scanner, bool isFirst);

    TextColumn fileArray;
    TextColumn newNameArray;
    bool holdsPaths = true;
    bool ignoreCase = false;
    ListField field;
};

/// Reads a list of new names, one a line, which stay as they stand. One object reads one list.
class RenameListLoader {
  public:
    /// As in TabDelimitedFileListLoader.
    [[nodiscard]] int load(std::string_view bytes);

    [[nodiscard]] TextColumn& getFileArray() { return fileArray; }

  private:
    TextColumn fileArray;
};

} // namespace tavrin
