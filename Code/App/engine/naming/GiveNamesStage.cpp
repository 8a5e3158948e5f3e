#include "engine/naming/GiveNamesStage.h"

#include "engine/pipeline/EngineHost.h"
#include "engine/pipeline/EngineState.h"
#include "engine/pipeline/ProgressInfo.h"
#include "platform/files/FileSystem.h"
#include "platform/processes/RunLoop.h"
#include "store/contexts/StoreContext.h"
#include "support/text/PathParts.h"
#include "support/text/Text.h"

#include <algorithm>
#include <cerrno>
#include <iterator>

namespace tavrin {

namespace {

/// Gives a row a name in the bytes of the file system.
void give(StoreContext& context, RowId id, std::string_view bytes) {
    const bool differs = bytes != context.component(id);
    std::u16string name = text::fromBytes(bytes);
    text::replaceUnit(name, u':', u'/');
    context.setFinalName(id, name);
    NodeRow& row = context.change(id);
    row.namedBy = NamedBy::hand;
    row.diff = differs;
    row.madeDistinct = false;
}

} // namespace

bool GiveNamesStage::process() {
    const StageProgress report(progress);
    report.describe("Preparing..");
    report.indeterminate(true);
    keepAllNames();
    saveAndRefaultObjects();
    engine.setChainOfNames({});
    for (const GivenName& given : names) {
        if (const RowId id = context->fileWithPath(given.path); id != noRow) // else the reading has told why
            give(*context, id, given.name);
        context->commitIfMuchIsStaged();
    }
    saveAndRefaultObjects();
    engine.computeNumberOfFilesThatNeedRenaming(*context, settings.itemFilter());
    return true;
}

void GiveNamesStage::keepAllNames() {
    for (const RowId id : context->fetch({FetchEntity::file, Predicate::always(), {}, 0})) {
        context->setFinalNameToName(id);
        const NodeRow& present = context->row(id);
        if (present.diff || present.madeDistinct || present.namedBy != NamedBy::steps) {
            NodeRow& row = context->change(id);
            row.diff = row.madeDistinct = false;
            row.namedBy = NamedBy::steps;
        }
        context->commitIfMuchIsStaged();
    }
}

// ---- what is settled by hand, beside the steps

bool LeaveOutStage::process() {
    std::vector<RowId> wanted;
    wanted.reserve(pins.leftOut());
    pins.forEach([&](const std::string& path, const NamePins::Pin& pin) {
        if (const RowId id = pin.isLeftOut ? context->fileWithPath(path) : noRow; id != noRow)
            wanted.push_back(id);
    });
    std::ranges::sort(wanted);
    const std::vector<RowId> present =
        context->fetch({FetchEntity::file, Predicate::isTrue(NodeKey::leftOut), {}, 0});
    const auto setEach = [this](const std::vector<RowId>& rows, NamedBy by) {
        for (const RowId id : rows) {
            context->change(id).namedBy = by;
            context->commitIfMuchIsStaged();
        }
    };
    std::vector<RowId> changed;
    std::ranges::set_difference(present, wanted, std::back_inserter(changed));
    setEach(changed, NamedBy::steps);
    changed.clear();
    std::ranges::set_difference(wanted, present, std::back_inserter(changed));
    setEach(changed, NamedBy::nobody);
    saveAndRefaultObjects();
    engine.computeTotalNumberOfFilesForContext(*context, settings.itemFilter());
    return true;
}

bool PinNamesStage::process() {
    engine.setHashesOfNames({});
    NamePins::Bunches over;
    computed = std::make_shared<EngineState::ComputedNames>();
    pins.forEach([&](const std::string& path, const NamePins::Pin& one) {
        const RowId id = context->fileWithPath(path);
        if (id != noRow && !one.name.empty() && pins.namesCount())
            pin(id, path, one.name);
        else if (id == noRow && isOver(path))
            over.add({path, "", false});
    });
    saveAndRefaultObjects();
    engine.computeNumberOfFilesThatNeedRenaming(*context, settings.itemFilter());
    engine.setComputedNames(std::move(computed));
    for (auto bunch = over.next(); !bunch.empty(); bunch = over.next())
        engine.host().runLoop().post(
            [&host = engine.host(), bunch = std::move(bunch)] { host.changePins(bunch); });
    return true;
}

void PinNamesStage::pin(RowId id, const std::string& path, const std::string& name) {
    const NodeRow& row = context->row(id);
    if (row.isLeftOut() || !settings.itemFilter().admits(row))
        return;
    computed->emplace(path, context->finalName(id));
    give(*context, id, name);
    context->commitIfMuchIsStaged();
}

bool PinNamesStage::isOver(const std::string& path) {
    FileStatus status;
    const int error = FileSystem::sharedInstance().status(path, status);
    if (error == ENOENT || error == ENOTDIR)
        return true;
    for (std::string_view above = path; above.size() > 1; above = PathParts(above).folder)
        if (context->hasSourceItem(above))
            return false;
    return !context->hasSourceItem("/");
}

} // namespace tavrin
