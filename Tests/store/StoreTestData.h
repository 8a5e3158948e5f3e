#pragma once

#include "common/Testing.h"
#include "store/contexts/StoreContext.h"
#include "store/paging/ItemStore.h"

namespace tavrin::test {

/// The two back-ends, and the file with so small a budget that nearly every access pages.
enum class Backing { memory, file, tightFile };

inline ItemStore::Options optionsFor(Backing backing, const std::string& folder) {
    ItemStore::Options options;
    options.kind = backing == Backing::memory ? ItemStore::Kind::memory : ItemStore::Kind::file;
    options.folder = folder;
    if (backing == Backing::tightFile)
        options.residentBudget = 1u << 20;
    return options;
}

/// A ghost folder "/tree" with `count` files named "file 1.txt" on, committed.
inline RowId fillFolder(StoreContext& context, int count, std::string_view path = "/tree") {
    const RowId folder = context.insertGhostNode(path);
    for (int i = 1; i <= count; ++i)
        context.insertFile(folder, "file " + std::to_string(i) + ".txt", i % 3 == 0, false, i);
    context.commit();
    context.reset();
    return folder;
}

} // namespace tavrin::test
