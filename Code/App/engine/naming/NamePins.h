#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace tavrin {

/// What somebody has settled by hand for items, by their paths in bytes: the name that one is to get, and
/// whether it takes part at all. A value: copies share what they have in common, so that handing one to
/// another thread, or keeping the one before a change, costs next to nothing.
class NamePins {
  public:
    /// What holds for one path.
    struct Pin {
        std::string name; ///< in the bytes of the file system; empty where the steps name the item
        bool isLeftOut = false;
        [[nodiscard]] bool isNothing() const { return name.empty() && !isLeftOut; }
    };
    /// What is to become of one; what is absent stays as it is.
    struct Change {
        std::string path;
        std::optional<std::string> name = std::nullopt; ///< empty: the steps name the item again
        std::optional<bool> isLeftOut = std::nullopt;
    };

    /// Of several changes of a path the last one counts.
    void apply(std::vector<Change> changes);
    /// Off: runs go by the steps alone, for a look; the names are kept.
    void setNamesCount(bool count) { doNamesCount = count; }
    [[nodiscard]] bool namesCount() const { return doNamesCount; }

    /// Null for a path of which nothing is settled; valid until the next change.
    [[nodiscard]] const Pin* find(std::string_view path) const;
    [[nodiscard]] std::size_t named() const { return namedCount; }
    [[nodiscard]] std::size_t leftOut() const { return leftOutCount; }
    [[nodiscard]] bool isEmpty() const { return namedCount == 0 && leftOutCount == 0; }
    /// Calls with each path and its pin, in no order.
    template <typename Visit> void forEach(Visit visit) const {
        for (std::size_t part = 0; part < partCount; ++part)
            forEachIn(part, visit);
    }

    /// Pins are kept in so many parts, each of which is small. A change copies the parts that it touches.
    static constexpr std::size_t partCount = 512;
    /// So many of them are changed in a few milliseconds, however long the list is.
    static constexpr std::size_t partsAtOnce = 32;
    /// As `forEach` does, of the paths in one part.
    template <typename Visit> void forEachIn(std::size_t part, Visit visit) const {
        if (parts && (*parts)[part])
            for (const auto& [path, pin] : *(*parts)[part])
                visit(path, pin);
    }

    /// Changes of many paths, sorted by their parts, so that they can be made in bunches.
    class Bunches {
      public:
        void add(Change change) { byPart[partOf(change.path)].push_back(std::move(change)); }
        /// Those of the next few parts; empty when none are left.
        [[nodiscard]] std::vector<Change> next();

      private:
        std::array<std::vector<Change>, partCount> byPart;
        std::size_t nextPart = 0;
    };

  private:
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view path) const { return std::hash<std::string_view>{}(path); }
    };
    using Part = std::unordered_map<std::string, Pin, Hash, std::equal_to<>>;
    using Parts = std::array<std::shared_ptr<const Part>, partCount>;
    static std::size_t partOf(std::string_view path);

    void applyTo(Part& part, Change& change);

    std::shared_ptr<const Parts> parts;
    std::size_t namedCount = 0;
    std::size_t leftOutCount = 0;
    bool doNamesCount = true;
};

/// Where a run has moved items, from which follows where those lie now that it moved with their folders.
class MovedPaths {
  public:
    /// A path in bytes, as it was before anything above it moved, and the name there now; whether it is the
    /// one that the pin was to give.
    void add(std::string from, std::string_view name, bool isPinned) {
        moves.insert_or_assign(std::move(from), Move{std::string(name), isPinned});
    }
    /// Where what lay at the path lies now.
    [[nodiscard]] std::string presentPath(const std::string& path) const;
    /// What this means for pins: who got its name is not pinned any more, all others go along.
    [[nodiscard]] std::vector<NamePins::Change> changesOf(const NamePins& pins) const;

  private:
    struct Move {
        std::string name;
        bool isPinned;
    };
    std::unordered_map<std::string, Move> moves;
};

} // namespace tavrin
