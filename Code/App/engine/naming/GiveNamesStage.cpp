#include "engine/naming/GiveNamesStage.h"

#include "engine/pipeline/EngineState.h"
#include "engine/pipeline/ProgressInfo.h"
#include "store/contexts/StoreContext.h"
#include "support/text/Text.h"

namespace tavrin {

bool GiveNamesStage::process() {
    const StageProgress report(progress);
    report.describe("Preparing..");
    report.indeterminate(true);
    keepAllNames();
    saveAndRefaultObjects();
    engine.setChainOfNames({});
    for (const GivenName& given : names) {
        give(given);
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
        if (present.diff || present.madeDistinct || present.hasExactName) {
            NodeRow& row = context->change(id);
            row.diff = row.madeDistinct = row.hasExactName = false;
        }
        context->commitIfMuchIsStaged();
    }
}

void GiveNamesStage::give(const GivenName& given) {
    const RowId id = context->fileWithPath(given.path);
    if (id == noRow)
        return; // the reading has told why
    std::u16string name = text::fromBytes(given.name);
    text::replaceUnit(name, u':', u'/');
    context->setFinalName(id, name);
    NodeRow& row = context->change(id);
    row.hasExactName = true;
    row.diff = true;
}

} // namespace tavrin
