#pragma once

#include "platform/files/FileStatus.h"
#include "store/contexts/SmallEntities.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <utility>

namespace tavrin {

/// What was seen of items when they were put on the list, links not followed, so that the reading that comes
/// next need not look at them again. Of very many items only the first are kept. Not thread-safe.
class SourceLooks {
  public:
    /// The number under which the item keeps it; 0 where there are too many.
    [[nodiscard]] std::uint32_t add(const FileStatus& status) {
        if (kept.size() == most)
            return 0;
        kept.push_back(status);
        return first + static_cast<std::uint32_t>(kept.size() - 1);
    }
    /// Null where nothing is known of the item any more.
    [[nodiscard]] const FileStatus* of(const SourceItem& item) const {
        return item.look >= first && item.look - first < kept.size() ? &kept[item.look - first] : nullptr;
    }
    /// All that is kept; these looks are empty then, and give none of its numbers again.
    [[nodiscard]] SourceLooks take() {
        SourceLooks taken;
        std::swap(taken, *this);
        first = taken.first + static_cast<std::uint32_t>(taken.kept.size());
        return taken;
    }

  private:
    static constexpr std::size_t most = 1u << 17;
    std::uint32_t first = 1;
    std::deque<FileStatus> kept;
};

} // namespace tavrin
