#pragma once

#include "presentation/history/HistoryValues.h"

#include <QString>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tavrin {

/// Whether one of the two names of an item, as they are shown, has the text in it. Any thread.
[[nodiscard]] bool isNamed(const std::string& oldName, const std::string& newName, const QString& text);

/// The items of past runs whose old or new name has a text in it.
struct NamesFound {
    struct Hit {
        std::size_t run = 0;    ///< place in `runs`
        std::uint32_t item = 0; ///< its number in the record
        std::string oldName;    ///< in bytes, as the next
        std::string newName;
    };
    static constexpr std::size_t most = 200;

    std::vector<ShownRun> runs; ///< those that have hits
    std::vector<Hit> hits;      ///< run by run, as far as `most` goes
    bool hasMore = false;

    /// Reads the records of the runs, in their order. What it has come to when it is not wanted any more. Any
    /// thread.
    [[nodiscard]] static NamesFound find(const std::vector<ShownRun>& runs, const QString& text,
                                         const std::function<bool()>& isUnwanted);
};

} // namespace tavrin
