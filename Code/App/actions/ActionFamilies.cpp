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
         })
        all.insert(all.end(), family.begin(), family.end());
    return all;
}

} // namespace tavrin
