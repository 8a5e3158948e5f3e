#pragma once

#include "support/text/Glob.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// Which of the items that are given, and that are found in them, get rows. As it is made it leaves nothing
/// out but what is hidden. A run goes by the one that was set before it.
struct ItemSelection {
    /// An item takes part if its name fits one of these, or there is none, and none of the others. Globs for
    /// paths are held against the path below the given folder.
    std::vector<Glob> includes;
    std::vector<Glob> excludes; ///< a folder that fits is not entered

    bool takesFiles = true; ///< what is neither a folder nor a link
    bool takesLinks = true;
    bool followsLinks = true;  ///< a given one that leads to a folder is read like that folder
    bool renamesLinks = false; ///< else each is refused when it would be renamed
    bool findsHidden = false;  ///< while walking
    bool takesGivenHidden = false;
    /// Items may be given that lie inside others that are given too: each is read once.
    bool mayNest = false;
    std::optional<int> depth; ///< how many levels below a given folder are read; all where absent

    // Seconds since 2001; what was changed at that very moment is neither.
    std::optional<double> changedAfter;
    std::optional<double> changedBefore;

    /// An item as globs see it.
    struct Candidate {
        std::string_view path; ///< below the given folder; of what is given itself its name
        bool isFolder = false;
    };
    [[nodiscard]] bool isExcluded(const Candidate& candidate) const;
    [[nodiscard]] bool isIncluded(const Candidate& candidate) const;
    [[nodiscard]] bool hasGlobs() const { return !includes.empty() || !excludes.empty(); }

    [[nodiscard]] bool asksForTime() const { return changedAfter || changedBefore; }
    [[nodiscard]] bool admitsTime(double changed) const {
        return (!changedAfter || changed > *changedAfter) && (!changedBefore || changed < *changedBefore);
    }
};

} // namespace tavrin
