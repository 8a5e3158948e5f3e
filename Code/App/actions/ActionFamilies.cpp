#include "actions/ActionFamilies.h"

namespace tavrin {

std::vector<ActionEntry> allActions() {
    std::vector<ActionEntry> all;
    for (const auto family : {
             replaceTextActions(),
             replaceCharactersActions(),
             replaceAtEndsActions(),
             removeAtEndsActions(),
             insertTextActions(),
             moveTextActions(),
             caseActions(),
             properCaseActions(),
             camelCaseActions(),
             numberActions(),
             removeAnywhereActions(),
             truncateActions(),
             convertToNTFSActions(),
             characterSetActions(),
             numberBlockActions(),
             romanNumeralActions(),
             alphabeticalSequenceActions(),
             dateActions(),
             regularExpressionActions(),
             renameFromListActions(),
             folderNameActions(),
             pathComponentsActions(),
             tagActions(),
             mp3Actions(),
             dimensionsActions(),
         })
        all.insert(all.end(), family.begin(), family.end());
    return all;
}

} // namespace tavrin
