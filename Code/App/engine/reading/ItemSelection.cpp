#include "engine/reading/ItemSelection.h"

#include "support/text/PathParts.h"

#include <algorithm>

namespace tavrin {

namespace {

bool fitsAny(const std::vector<Glob>& globs, const ItemSelection::Candidate& candidate) {
    if (globs.empty())
        return false;
    thread_local std::u32string name;
    thread_local std::u32string path;
    Glob::decode(lastComponent(candidate.path), name);
    path.clear();
    return std::ranges::any_of(globs, [&](const Glob& glob) {
        if (glob.isForFolders() && !candidate.isFolder)
            return false;
        if (!glob.isForPaths())
            return glob.matches(name);
        if (path.empty())
            Glob::decode(candidate.path, path);
        return glob.matches(path);
    });
}

} // namespace

bool ItemSelection::isExcluded(const Candidate& candidate) const { return fitsAny(excludes, candidate); }

bool ItemSelection::isIncluded(const Candidate& candidate) const {
    return includes.empty() || fitsAny(includes, candidate);
}

} // namespace tavrin
