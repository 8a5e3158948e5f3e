#include "actions/sequence/SequenceAction.h"

#include "actions/PrecomposedText.h"

namespace tavrin {

void SequenceAction::addPlacementParameters(std::u16string_view prefix) {
    placement.addParametersTo(*this);
    if (placement.where() == Place::wholeName) {
        addParameter(
            textParameter("prefix", "Text in front", prefix).in(PanelSection::front).option("prefix"),
            paramPrefix);
        addParameter(textParameter("suffix", "Text behind").in(PanelSection::behind).option("suffix"),
                     paramSuffix);
    } else if (placement.where() == Place::position) {
        // Kept for stored lists, which have them.
        addParameter(textParameter("prefix", "Not used").unused());
        addParameter(textParameter("suffix", "Not used").unused());
    }
}

void SequenceAction::prepareParameters() {
    SortBasedAction::prepareParameters();
    placement.prepareParameters();
}

void SequenceAction::processName(std::u16string_view fragment, std::u16string& result) {
    const auto* text = textFor(item());
    if (!text) {
        result += fragment;
    } else if (placement.isBesideText()) {
        placement.put(*text, PrecomposedText(fragment).view(), result);
    } else {
        result += paramPrefix;
        placement.put(*text, fragment, result);
        result += paramSuffix;
    }
}

} // namespace tavrin
