#pragma once

#include "platform/files/FileStatus.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// One entry of a folder. `kind` and `inode` are those of the entry itself, links not followed; at the place
/// where another file system is mounted the inode is that of what lies below it.
struct FolderEntry {
    std::string_view name; ///< valid as long as the list that it comes from is unchanged
    FileStatus::Kind kind;
    std::uint64_t inode;
};

/// The entries of a folder in one buffer: a folder of a million files needs little more than the bytes of its
/// names.
class FolderEntries {
  public:
    class Iterator {
      public:
        Iterator(const FolderEntries& list, std::size_t place) : entries(&list), index(place) {}
        FolderEntry operator*() const { return (*entries)[index]; }
        Iterator& operator++() {
            ++index;
            return *this;
        }
        bool operator==(const Iterator& other) const { return index == other.index; }

      private:
        const FolderEntries* entries;
        std::size_t index;
    };

    void clear();
    void add(const FolderEntry& entry);
    /// By the bytes of the names.
    void sort();
    /// Of sorted entries.
    [[nodiscard]] bool contains(std::string_view name) const;

    [[nodiscard]] std::size_t size() const { return places.size(); }
    [[nodiscard]] bool empty() const { return places.empty(); }
    FolderEntry operator[](std::size_t index) const {
        const Place& place = places[index];
        return {nameAt(place), place.kind, place.inode};
    }
    [[nodiscard]] Iterator begin() const { return {*this, 0}; }
    [[nodiscard]] Iterator end() const { return {*this, places.size()}; }

  private:
    struct Place {
        std::uint64_t
            key; // the bytes behind what all names share, so that most comparisons are one of numbers
        std::uint64_t inode;
        std::uint32_t offset;
        std::uint16_t length;
        FileStatus::Kind kind;
    };
    [[nodiscard]] std::string_view nameAt(const Place& place) const {
        return {names.data() + place.offset, place.length};
    }
    [[nodiscard]] std::size_t commonPrefix() const;

    std::string names;
    std::vector<Place> places;
};

/// Reads all entries of the folder behind a readable descriptor, from its start, sorted by the bytes of their
/// names. Returns 0 or an errno value.
int readFolder(int folder, FolderEntries& into);

} // namespace tavrin
