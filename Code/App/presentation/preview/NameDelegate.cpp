#include "presentation/preview/NameDelegate.h"

#include "presentation/GlyphIcon.h"
#include "presentation/WindowColours.h"
#include "presentation/preview/PreviewTableModel.h"

#include <QApplication>
#include <QPainter>
#include <QTextLayout>
#include <algorithm>
#include <optional>

namespace tavrin {

namespace {

using Spans = std::vector<NameDifference::Span>;

constexpr int padding = 6;
constexpr int gap = 12; // between a name and what is said about it
constexpr int leastCharacters = 10;

/// A name cut in its middle to a width, with the spans moved along.
struct ElidedName {
    QString text;
    Spans spans;
};

/// The middle goes, so that numbers and extension stay in sight. `tail` units at the end are kept if
/// possible.
ElidedName elided(const QString& text, const Spans& spans, const QFontMetrics& metrics, int width) {
    if (metrics.horizontalAdvance(text) <= width)
        return {text, spans};
    const QString shortened = metrics.elidedText(text, Qt::ElideMiddle, width);
    const qsizetype hole = shortened.indexOf(QChar(0x2026));
    if (hole < 0)
        return {shortened, {}};
    const auto head = static_cast<std::size_t>(hole);
    const auto tail = static_cast<std::size_t>(shortened.size() - hole - 1);
    const std::size_t tailStart = static_cast<std::size_t>(text.size()) - tail;
    Spans moved;
    for (const NameDifference::Span& span : spans) {
        const std::size_t end = span.start + span.length;
        if (span.start < head)
            moved.push_back({span.start, std::min(end, head) - span.start});
        if (end > tailStart) {
            const std::size_t from = std::max(span.start, tailStart);
            moved.push_back({head + 1 + from - tailStart, end - from});
        }
    }
    return {shortened, moved};
}

void drawName(QPainter* painter, const QRect& place, const ElidedName& name, const QFont& font,
              const QColor& text, const QColor& tint, const QColor& tintedText, bool isRightToLeft) {
    QTextLayout layout(name.text, font);
    QTextOption direction;
    direction.setTextDirection(Qt::LeftToRight);
    direction.setWrapMode(QTextOption::NoWrap);
    layout.setTextOption(direction);
    QList<QTextLayout::FormatRange> formats;
    for (const NameDifference::Span& span : name.spans) {
        QTextCharFormat format;
        format.setBackground(tint);
        format.setForeground(tintedText);
        formats.append({static_cast<int>(span.start), static_cast<int>(span.length), format});
    }
    layout.setFormats(formats);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    line.setLineWidth(100000);
    layout.endLayout();
    painter->setPen(text);
    const double left = isRightToLeft ? place.right() - line.naturalTextWidth() : place.left();
    layout.draw(painter, QPointF(left, place.top() + (place.height() - line.height()) / 2));
}

QColor stateColour(PreviewTableModel::State state, const QPalette& palette) {
    const WindowColours& colours = WindowColours::of(palette);
    switch (state) {
    case PreviewTableModel::State::unchanged:
    case PreviewTableModel::State::leftOut:
        return palette.color(QPalette::PlaceholderText);
    case PreviewTableModel::State::renamed:
    case PreviewTableModel::State::byHand:
        return colours.accent;
    case PreviewTableModel::State::madeDistinct:
        return colours.infoText;
    case PreviewTableModel::State::problem:
        return colours.errorMark;
    }
    return {};
}

Glyph glyphOf(PreviewTableModel::State state) {
    switch (state) {
    case PreviewTableModel::State::unchanged:
        return Glyph::unchanged;
    case PreviewTableModel::State::renamed:
        return Glyph::renamed;
    case PreviewTableModel::State::madeDistinct:
        return Glyph::distinct;
    case PreviewTableModel::State::byHand:
        return Glyph::pen;
    case PreviewTableModel::State::leftOut:
        return Glyph::leftOut;
    case PreviewTableModel::State::problem:
        break;
    }
    return Glyph::problem;
}

/// What a run has made of a row, drawn in place of what the preview says of it.
struct RunMark {
    Glyph glyph;
    QColor colour;
};

std::optional<RunMark> runMark(RunOutcome outcome, const QPalette& palette) {
    const WindowColours& colours = WindowColours::of(palette);
    switch (outcome) {
    case RunOutcome::open:
        return std::nullopt;
    case RunOutcome::inHand:
        return RunMark{Glyph::clock, WindowColours::accentOf(palette)};
    case RunOutcome::done:
        return RunMark{Glyph::check, colours.addedText};
    case RunOutcome::failed:
        return RunMark{Glyph::problem, colours.errorMark};
    case RunOutcome::leftOut:
        break;
    }
    return RunMark{Glyph::leftOut, palette.color(QPalette::PlaceholderText)};
}

/// What is said behind the new name.
struct Note {
    QString words;
    QColor colour;
    bool repeatsMark = false; ///< and so yields to the name
};

Note noteOn(PreviewTableModel::State state, const QModelIndex& index, const QPalette& palette) {
    using State = PreviewTableModel::State;
    const QColor dim = palette.color(QPalette::PlaceholderText);
    if (state == State::leftOut)
        return {NameDelegate::tr("left out"), dim, true};
    const auto* table = static_cast<const PreviewTableModel*>(index.model());
    const bool hasOwnColumn = state == State::problem && table->show() == PreviewTableModel::Show::problems;
    const QString reason = hasOwnColumn ? QString() : index.data(PreviewTableModel::reasonRole).toString();
    if (!reason.isEmpty())
        return {reason,
                state == State::problem ? stateColour(state, palette) : WindowColours::of(palette).infoText};
    if (state == State::madeDistinct)
        return {NameDelegate::tr("made distinct"), stateColour(state, palette), true};
    return {state == State::byHand ? NameDelegate::tr("by hand") : QString(), dim, true};
}

/// Says behind a name what there is to say about it, and gives the room that this leaves to the name. A
/// note that tells more than the mark has the right of way until the name is down to its last characters;
/// another is there only where both have room.
QRect drawNote(QPainter& painter, const QRect& place, const QStyleOptionViewItem& item, const QString& name,
               const Note& note) {
    const QFontMetrics& metrics = item.fontMetrics;
    const int wholeName = metrics.horizontalAdvance(name) + 1;
    const int leastName = std::min(wholeName, metrics.averageCharWidth() * leastCharacters);
    const int room = place.width() - gap;
    if (note.repeatsMark && room - metrics.horizontalAdvance(note.words) < wholeName)
        return place;
    const int nameWidth =
        std::clamp(room - metrics.horizontalAdvance(note.words), leastName, std::max(leastName, wholeName));
    const int noteWidth = std::max(0, room - nameWidth);
    QRect nameRoom(place.left(), place.top(), nameWidth, place.height());
    QRect noteRoom(place.left() + nameWidth + gap, place.top(), noteWidth, place.height());
    painter.setPen(note.colour);
    painter.drawText(QStyle::visualRect(item.direction, place, noteRoom), Qt::AlignLeading | Qt::AlignVCenter,
                     metrics.elidedText(note.words, Qt::ElideRight, noteWidth));
    return QStyle::visualRect(item.direction, place, nameRoom);
}

void drawTick(QPainter& painter, const QStyleOptionViewItem& item, const QStyle& style) {
    QStyleOptionViewItem box(item);
    box.state.setFlag(QStyle::State_HasFocus, false);
    box.state |= item.checkState == Qt::Checked ? QStyle::State_On : QStyle::State_Off;
    box.rect.setSize({style.pixelMetric(QStyle::PM_IndicatorWidth, &item, item.widget),
                      style.pixelMetric(QStyle::PM_IndicatorHeight, &item, item.widget)});
    box.rect.moveCenter(item.rect.center());
    style.drawPrimitive(QStyle::PE_IndicatorItemViewItemCheck, &box, &painter, item.widget);
}

/// The tints and colours of a row keep their meaning, and their contrast, where it is selected.
void softenSelection(QPalette& palette) {
    palette.setColor(QPalette::Highlight, WindowColours::chosenGround(palette));
    palette.setColor(QPalette::HighlightedText, palette.color(QPalette::Text));
}

} // namespace

QSize NameDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const {
    return {60, option.fontMetrics.height() + 8};
}

NameDelegate::Sign NameDelegate::signOf(const QModelIndex& index, const QPalette& palette) {
    const auto outcome = static_cast<RunOutcome>(index.data(PreviewTableModel::outcomeRole).toInt());
    if (const auto mark = runMark(outcome, palette))
        return {mark->glyph, mark->colour};
    const auto state =
        static_cast<PreviewTableModel::State>(index.data(PreviewTableModel::stateRole).toInt());
    return {glyphOf(state), stateColour(state, palette)};
}

void NameDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    const QString text = item.text;
    item.text.clear();
    if (index.column() == PreviewTableModel::tick) // the style would leave room for a text beside it
        item.features.setFlag(QStyleOptionViewItem::HasCheckIndicator, false);
    softenSelection(item.palette);
    const auto outcome = static_cast<RunOutcome>(index.data(PreviewTableModel::outcomeRole).toInt());
    const std::optional<RunMark> mark = runMark(outcome, item.palette);
    if (outcome == RunOutcome::inHand)
        item.state.setFlag(QStyle::State_Selected);
    const QStyle* style = item.widget ? item.widget->style() : QApplication::style();
    // The ground tells what is selected; pictures keep their own colours on it.
    style->drawPrimitive(QStyle::PE_PanelItemViewItem, &item, painter, item.widget);
    item.state.setFlag(QStyle::State_Selected, false);
    style->drawControl(QStyle::CE_ItemViewItem, &item, painter, item.widget);
    if (index.column() == PreviewTableModel::tick)
        drawTick(*painter, item, *style);
    if (index.column() == PreviewTableModel::icon || index.column() == PreviewTableModel::tick)
        return;

    const auto state =
        static_cast<PreviewTableModel::State>(index.data(PreviewTableModel::stateRole).toInt());
    const bool isRightToLeft = item.direction == Qt::RightToLeft;
    const WindowColours& colours = WindowColours::of(item.palette);
    const QColor plain = item.palette.color(QPalette::Text);
    const QRect place = item.rect.adjusted(padding, 0, -padding, 0);
    painter->save();
    painter->setClipRect(item.rect);
    painter->setFont(item.font);
    if (index.column() == PreviewTableModel::state) {
        const int size = std::min(item.fontMetrics.height(), item.rect.height());
        QRect square(0, 0, size, size);
        square.moveCenter(item.rect.center());
        if (mark)
            GlyphIcon::paint(*painter, square, mark->glyph, mark->colour);
        else
            GlyphIcon::paint(*painter, square, glyphOf(state), stateColour(state, item.palette),
                             isRightToLeft);
        painter->restore();
        return;
    }
    const bool isNew = index.column() == PreviewTableModel::newName;
    const bool isPast = outcome == RunOutcome::done || outcome == RunOutcome::leftOut;
    const bool isDim =
        index.column() == PreviewTableModel::folder || state == PreviewTableModel::State::leftOut ||
        (isNew ? state == PreviewTableModel::State::unchanged || outcome == RunOutcome::leftOut : isPast);
    const bool isReason = index.column() == PreviewTableModel::problem;
    const QColor textColour = isReason ? stateColour(state, item.palette)
                              : isDim  ? item.palette.color(QPalette::PlaceholderText)
                                       : plain;
    QRect nameRoom = place;
    if (Note note = isNew ? noteOn(state, index, item.palette) : Note(); !note.words.isEmpty()) {
        if (mark)
            note.colour = mark->colour;
        nameRoom = drawNote(*painter, place, item, text, note);
    }
    const Spans spans = isPast ? Spans() : index.data(PreviewTableModel::spansRole).value<Spans>();
    drawName(painter, nameRoom, elided(text, spans, item.fontMetrics, nameRoom.width()), item.font,
             textColour, isNew ? colours.addedTint : colours.removedTint,
             isNew ? colours.addedText : colours.removedText, isRightToLeft);
    painter->restore();
}

} // namespace tavrin
