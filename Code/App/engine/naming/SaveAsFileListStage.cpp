#include "engine/naming/SaveAsFileListStage.h"

#include "engine/pipeline/EngineHost.h"
#include "engine/pipeline/EngineState.h"
#include "engine/pipeline/ProgressInfo.h"
#include "platform/files/AbsolutePaths.h"
#include "platform/files/FileSystem.h"
#include "store/contexts/StoreContext.h"
#include "store/queries/FilterManager.h"
#include "support/application/DebugLog.h"
#include "support/text/Text.h"

#include <system_error>

namespace tavrin {

namespace {

constexpr std::size_t batchSize = 1000;
constexpr std::size_t startingCapacity = 1024;

/// Bytes that are no text stay as they are.
std::string precomposedUtf8(std::u16string_view text) { return text::toUtf8(text::precomposed(text)); }

} // namespace

std::string SaveAsFileListStage::stageDescription() const { return "Saving file list..."; }

bool SaveAsFileListStage::process() {
    const StageProgress report(progress);
    report.describe("Preparing..");
    report.item(0);
    report.numberOfItems(context->engineControl().totalNumberOfFiles);
    report.indeterminate(false);
    const PassMarker marker = engine.nextStageFlagCounter();
    text.clear();
    text.reserve(startingCapacity);
    const FetchRequest request{
        FetchEntity::file,
        FilterManager::currentFilterPredicate(settings.itemFilter()).with(Predicate::notMarked(marker)),
        {{NodeKey::name, true}},
        batchSize};
    std::int32_t count = 0;
    for (std::vector<RowId> batch; !(batch = context->fetch(request)).empty();) {
        for (const RowId id : batch) {
            report.describeItem([&] { return "Saving " + context->fullPath(id); });
            appendLine(id);
            context->setStageFlag(id, marker);
            report.item(++count);
        }
        report.describe("Saved information for {} files. Committing..", count);
        saveAndRefaultObjects();
    }
    const int error = FileSystem::sharedInstance().writeFileAtomically(linkTarget(path), text);
    if (error == 0)
        return true;
    breakOff(std::generic_category().message(error));
    return false;
}

void SaveAsFileListStage::breakOff(const std::string& why) {
    debugLog("the list was not written to {}: {}", path, why);
    if (reason)
        *reason = why;
}

void SaveAsFileListStage::appendLine(RowId id) {
    const std::string finalName = precomposedUtf8(context->finalName(id));
    const std::string name = precomposedUtf8(context->name(id));
    if (shouldIncludeOnlyAffectedFiles && finalName == name)
        return;
    switch (format) {
    case 0:
        text.append(name).append("\t").append(finalName) += '\n';
        break;
    case 1:
        text.append(finalName) += '\n';
        break;
    case 2:
        text.append(precomposedUtf8(text::fromBytes(context->fullPath(id)))).append("\t").append(finalName) +=
            '\n';
        break;
    default:
        break;
    }
}

} // namespace tavrin
