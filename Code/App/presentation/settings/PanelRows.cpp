#include "presentation/settings/PanelRows.h"

#include "actions/BaseRenameAction.h"
#include "presentation/PaletteWatch.h"
#include "presentation/QtText.h"
#include "presentation/WindowColours.h"

#include <QEvent>
#include <QStringList>
#include <algorithm>

namespace tavrin {

namespace {

/// The row that a parameter belongs into; the end for one that begins a row of its own.
auto rowFor(std::vector<PanelRow>& rows, const ParameterDescription& parameter) {
    return std::ranges::find_if(rows, [&](const PanelRow& row) {
        return !parameter.besideKey.empty() && row.first().key == parameter.besideKey;
    });
}

} // namespace

std::vector<PanelRow> panelRowsOf(const BaseRenameAction& action) {
    std::vector<PanelRow> rows;
    for (const ParameterDescription& parameter : action.parameters()) {
        if (parameter.isHidden)
            continue;
        if (const auto row = rowFor(rows, parameter); row != rows.end())
            row->parameters.push_back(&parameter);
        else
            rows.push_back({{&parameter}});
    }
    std::ranges::stable_sort(rows, {}, [](const PanelRow& row) { return row.first().section; });
    return rows;
}

namespace {

/// The first values, and the last one where it makes all of them wider. Where each folder begins anew, that
/// is another one in each.
PanelNote sequence(const BaseRenameAction& action, std::int32_t items) {
    const bool isFitted = action.getParamInt("paddingMode", 0) == 1;
    const bool isOneRun = action.getParamInt("sortEachFolderSeparately", 0) != 1;
    constexpr std::int32_t shown = 3;
    const std::int32_t last = isFitted && isOneRun ? std::max(items, 1) : 1;
    QStringList values;
    for (std::int32_t rank = 1; rank <= shown; ++rank)
        if (const auto value = action.sequenceValue(rank, last))
            values.append(toQString(*value));
    if (values.size() < shown)
        return {};
    if (last <= shown)
        //: The first values of a sequence, such as "01, 02, 03 …"
        return {NoteLabel::tr("%1, %2, %3 …").arg(values[0], values[1], values[2])};
    const QString lastValue = toQString(action.sequenceValue(last, last).value_or(u""));
    //: The first values of a sequence and its last one, such as "001, 002, 003 … 500"
    return {NoteLabel::tr("%1, %2, %3 … %4").arg(values[0], values[1], values[2], lastValue)};
}

PanelNote failure(const BaseRenameAction& action, std::int32_t) {
    return {QString::fromStdString(action.failure()), true};
}

PanelNote place(const BaseRenameAction& action, std::string_view positionKey, std::string_view modeKey) {
    const std::int32_t position = action.getParamInt(positionKey, 0);
    const bool isFromEnd = action.getParamInt(modeKey, 0) == 1;
    if (position <= 0)
        return {isFromEnd ? NoteLabel::tr("at the end") : NoteLabel::tr("at the start")};
    const auto count = static_cast<std::size_t>(position);
    return {isFromEnd
                ? NoteLabel::tr("before the last character||before the last %n characters", nullptr,
                                static_cast<int>(count))
                : NoteLabel::tr("after 1 character||after %n characters", nullptr, static_cast<int>(count))};
}

} // namespace

PanelNote::Maker PanelNote::forRow(const PanelRow& row) {
    const std::string_view key = row.first().key;
    if (key == "padding")
        return sequence;
    if (key == "searchPattern")
        return failure;
    if (row.parameters.size() == 2 && row.parameters.back()->choices.data() == positionModeChoices().data())
        return [key, mode = row.parameters.back()->key](const BaseRenameAction& action, std::int32_t) {
            return place(action, key, mode);
        };
    return {};
}

NoteLabel::NoteLabel() {
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse);
    setFocusPolicy(Qt::NoFocus);
    applyColour();
    whenPaletteChanges(this, [this] { applyColour(); });
}

void NoteLabel::showNote(const PanelNote& note) {
    setText(note.text);
    if (note.text.isEmpty())
        hide();
    else if (parentWidget())
        setVisible(true);
    if (note.isProblem == isProblem)
        return;
    isProblem = note.isProblem;
    applyColour();
}

void NoteLabel::applyColour() {
    setForegroundRole(isProblem ? QPalette::WindowText : QPalette::PlaceholderText);
    QPalette own;
    if (isProblem)
        own.setColor(QPalette::WindowText, WindowColours::of(own).errorMark);
    setPalette(own);
}

} // namespace tavrin
