#include "presentation/history/RunList.h"

#include "presentation/GlyphIcon.h"
#include "presentation/WindowColours.h"
#include "presentation/history/RunLine.h"
#include "presentation/history/RunWords.h"

#include <QLocale>
#include <QPainter>
#include <QStringList>
#include <algorithm>

namespace tavrin {

namespace {

constexpr int chipPadding = 8;

Glyph glyphOf(const ShownRun& run) {
    if (RunListModel::chipOf(run).tone == RunListModel::Tone::warning || !run.run.problem.empty())
        return Glyph::problem;
    switch (run.run.heading.what) {
    case RunKind::rename:
        return Glyph::renamed;
    case RunKind::undo:
        return Glyph::undo;
    case RunKind::redo:
        break;
    }
    return Glyph::redo;
}

struct ChipColours {
    QColor ground;
    QColor text;
};

ChipColours coloursOf(RunListModel::Tone tone, const QPalette& palette) {
    const WindowColours& colours = WindowColours::of(palette);
    switch (tone) {
    case RunListModel::Tone::warning:
        return {colours.warningTint, colours.warningText};
    case RunListModel::Tone::failure:
        return {colours.errorTint, colours.errorText};
    case RunListModel::Tone::plain:
        break;
    }
    return {palette.color(QPalette::Midlight), palette.color(QPalette::PlaceholderText)};
}

/// The width that it takes, its distance to what stands before it included.
int paintChip(QPainter& painter, const QRect& row, const RunListModel::Chip& chip, const QPalette& palette,
              Qt::LayoutDirection direction) {
    if (chip.text.isEmpty())
        return 0;
    const QFontMetrics metrics(painter.font());
    const int width = metrics.horizontalAdvance(chip.text) + 2 * chipPadding;
    const int height = metrics.height() + 4;
    const QRect place(row.right() - RunLine::margin - width + 1, row.top() + 6, width, height);
    const QRect seen = QStyle::visualRect(direction, row, place);
    const ChipColours colours = coloursOf(chip.tone, palette);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colours.ground);
    painter.drawRoundedRect(seen, height / 2.0, height / 2.0);
    painter.setPen(colours.text);
    painter.drawText(seen, Qt::AlignCenter, chip.text);
    return width + RunLine::margin;
}

} // namespace

void RunListModel::setRuns(std::vector<ShownRun> newRuns) {
    beginResetModel();
    allRuns = std::move(newRuns);
    lines.clear();
    std::optional<QDate> day;
    for (std::size_t i = 0; i < allRuns.size(); ++i) {
        const QDate runDay = RunWords::dayOf(allRuns[i].run.heading.began().value_or(0));
        if (day != runDay)
            lines.push_back({RunWords::day(runDay), std::nullopt});
        day = runDay;
        lines.push_back({{}, i});
    }
    endResetModel();
}

const ShownRun* RunListModel::runAt(const QModelIndex& index) const {
    const auto row = static_cast<std::size_t>(index.row());
    if (!index.isValid() || row >= lines.size() || !lines[row].run)
        return nullptr;
    return &allRuns[*lines[row].run];
}

QModelIndex RunListModel::indexOf(const std::string& name) const {
    const auto isIt = [&](const Line& line) { return line.run && allRuns[*line.run].run.name == name; };
    auto found = std::ranges::find_if(lines, isIt);
    if (found == lines.end())
        found = std::ranges::find_if(lines, [](const Line& line) { return line.run.has_value(); });
    return found == lines.end() ? QModelIndex() : index(static_cast<int>(found - lines.begin()));
}

int RunListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(lines.size());
}

QVariant RunListModel::data(const QModelIndex& index, int role) const {
    if (role != Qt::DisplayRole && role != Qt::AccessibleTextRole && role != Qt::ToolTipRole)
        return {};
    const ShownRun* run = runAt(index);
    if (!run)
        return role == Qt::ToolTipRole ? QString() : lines[static_cast<std::size_t>(index.row())].day;
    if (role == Qt::ToolTipRole)
        return RunWords::pathText(run->folder);
    QStringList words{countOf(*run)};
    if (const Chip chip = chipOf(*run); !chip.text.isEmpty())
        words += chip.text;
    words += detailsOf(*run);
    return words.join(", ");
}

Qt::ItemFlags RunListModel::flags(const QModelIndex& index) const {
    return runAt(index) ? Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren
                        : Qt::ItemNeverHasChildren;
}

QString RunListModel::countOf(const ShownRun& run) {
    if (!run.run.problem.empty())
        return tr("A damaged record");
    const std::size_t count = run.run.end ? run.changed : run.items;
    if (run.isUnfinished() && run.isUsable() && run.items > 0)
        return tr("%1 of %2 names")
            .arg(QLocale().toString(static_cast<qulonglong>(run.changed)),
                 QLocale().toString(static_cast<qulonglong>(run.items)));
    switch (run.run.heading.what) {
    case RunKind::rename:
        return tr("1 name||%Ln names", nullptr, static_cast<int>(count));
    case RunKind::undo:
        return tr("1 name undone||%Ln names undone", nullptr, static_cast<int>(count));
    case RunKind::redo:
        break;
    }
    return tr("1 name redone||%Ln names redone", nullptr, static_cast<int>(count));
}

QString RunListModel::detailsOf(const ShownRun& run) {
    QStringList parts{RunWords::hour(run.run.heading.began().value_or(0)),
                      RunWords::place(run.folder, run.folderCount)};
    if (run.run.heading.who != "window")
        parts += RunWords::author(run.run.heading.who);
    parts.removeAll(QString());
    return parts.join(QStringLiteral(" · "));
}

RunListModel::Chip RunListModel::chipOf(const ShownRun& run) {
    if (!run.run.problem.empty())
        return {tr("Damaged"), Tone::failure};
    if (run.run.isUnderWay)
        return {tr("Running"), Tone::plain};
    if (run.run.isUndone)
        return {tr("Undone"), Tone::plain};
    if (!run.run.end && !run.run.isSettled)
        return {tr("Interrupted"), Tone::warning};
    if (run.run.end && run.run.end->wasStopped && !run.run.isFinished)
        return {tr("Stopped"), Tone::plain};
    if (run.run.end && run.run.end->failed > 0)
        return {tr("1 not renamed||%Ln not renamed", nullptr, static_cast<int>(run.run.end->failed)),
                Tone::failure};
    return {};
}

QSize RunDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const auto* model = qobject_cast<const RunListModel*>(index.model());
    return {200, model && model->runAt(index) ? RunLine::heightOfTwo(option) : RunLine::heightOfHead(option)};
}

void RunDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const {
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setFont(option.font);
    const auto* model = qobject_cast<const RunListModel*>(index.model());
    if (const ShownRun* run = model ? model->runAt(index) : nullptr)
        paintRun(*painter, option, *run);
    else
        RunLine(*painter, option).paintHead(index.data().toString());
    painter->restore();
}

void RunDelegate::paintRun(QPainter& painter, const QStyleOptionViewItem& option, const ShownRun& run) {
    const RunLine line(painter, option);
    line.paintGround();
    const RunListModel::Chip chip = RunListModel::chipOf(run);
    const Glyph glyph = glyphOf(run);
    GlyphIcon::paint(painter, line.placeOfSign(0), glyph,
                     glyph == Glyph::problem ? coloursOf(chip.tone, option.palette).text
                                             : WindowColours::accentOf(option.palette),
                     option.direction == Qt::RightToLeft);
    const int chipWidth = paintChip(painter, option.rect, chip, option.palette, option.direction);
    QFont strong = option.font;
    if (option.state.testFlag(QStyle::State_Selected))
        strong.setWeight(QFont::DemiBold);
    painter.setFont(strong);
    line.paintText(0, RunListModel::countOf(run), option.palette.color(QPalette::Text), Qt::ElideRight,
                   chipWidth);
    painter.setFont(option.font);
    line.paintText(1, RunListModel::detailsOf(run), option.palette.color(QPalette::PlaceholderText),
                   Qt::ElideMiddle);
    line.paintFocus();
}

} // namespace tavrin
