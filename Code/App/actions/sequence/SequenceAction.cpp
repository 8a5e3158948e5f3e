#include "actions/sequence/SequenceAction.h"

#include "actions/PrecomposedText.h"

#include <algorithm>

namespace tavrin {

namespace {

constexpr std::int32_t asManyAsNeeded = 1;

} // namespace

void SequenceAction::addWidthParameters(const ParameterDescription& width) {
    addParameter(width, paramPadding);
    addParameter(checkboxParameter("paddingMode", "As many as needed", 0).beside(width.key).mark("as-needed"),
                 paramPaddingMode);
}

std::int32_t SequenceAction::widthFor(std::int32_t lastRank) const {
    if (paramPaddingMode != asManyAsNeeded || paramPadding < 0)
        return paramPadding;
    return std::max(paramPadding, widestValue(lastRank));
}

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
    measuredRank = 0;
}

void SequenceAction::processName(std::u16string_view fragment, std::u16string& result) {
    if (measuredRank != item().lastRank) {
        measuredRank = item().lastRank;
        widthInRun = widthFor(measuredRank);
    }
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
