#include "engine/renaming/HeedProblemsStage.h"

#include "engine/naming/NameProblems.h"
#include "store/contexts/StoreContext.h"
#include "store/queries/FilterManager.h"

#include <fmt/format.h>

#include <span>

namespace tavrin {

namespace {

/// Each is held in memory until the run has ended, so that a million would not be told one by one.
constexpr std::size_t mostTold = 10000;

} // namespace

bool HeedProblemsStage::process() {
    std::vector<RowId> rows =
        rowsWithProblems(*context, FilterManager::currentFilterPredicate(settings.itemFilter()));
    const bool stops = settings.conflictRule() == Settings::OnConflict::stop;
    // What is to be renamed all the same tells its reason when it fails.
    if (!stops)
        std::erase_if(rows, [this](RowId row) { return context->row(row).diff; });
    if (rows.empty())
        return true;
    tell(rows);
    if (!stops)
        return true;
    EngineControl& control = context->changeEngineControl();
    control.numberOfActuallyRenamedFiles = 0;
    control.numberOfItemsNotRenamed = control.numberOfFilesThatNeedRenaming;
    return false;
}

void HeedProblemsStage::tell(const std::vector<RowId>& rows) {
    for (const RowId row : std::span(rows).first(std::min(rows.size(), mostTold)))
        addError(problemTitle(*context, row), problemOf(*context, row)->message, context->fullPath(row));
    if (rows.size() > mostTold)
        addError("Not renamed either", fmt::format("{} more items", rows.size() - mostTold), {});
}

} // namespace tavrin
