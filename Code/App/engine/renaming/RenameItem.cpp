#include "engine/renaming/RenameItem.h"

#include "engine/renaming/NameOnDisk.h"
#include "store/contexts/StoreContext.h"
#include "support/text/PathParts.h"
#include "support/text/Text.h"

namespace tavrin {

void RenameItem::moveTo(RowId id) {
    const NodeRow row = context.row(id);
    const RowId newParent = row.parent;
    current = id;
    knowsWanted = false;
    root = row.root;
    diff = row.diff;
    isInTurn = row.mustBeSwapped || !row.canBeRenamedIndependently;
    hasExactName = row.hasExactName();
    seenItem = {row.identity(), row.kind};
    currentComponent = context.component(id);
    if (newParent != parent || parent == noRow) {
        folderPath = context.parentPath(id);
        parentIdentity = context.row(newParent).identity();
    }
    parent = newParent;
}

std::string RenameItem::fullPath() const { return joinedPath(folderPath, currentComponent); }

const std::string& RenameItem::newComponent() {
    if (!diff)
        return currentComponent;
    if (knowsWanted)
        return wantedComponent;
    knowsWanted = true;
    context.finalName(current, finalName);
    if (!nameOnDisk::from(finalName, currentComponent, wantedComponent, hasExactName))
        wantedComponent.clear();
    return wantedComponent;
}

NameProblem RenameItem::problemOfNewName() {
    return nameOnDisk::problemOf(context.finalName(current), currentComponent, hasExactName);
}

std::string RenameItem::shownName() const { return nameOnDisk::shown(currentComponent); }

std::string RenameItem::shownFinalName() { return text::toUtf8(context.finalName(current)); }

} // namespace tavrin
