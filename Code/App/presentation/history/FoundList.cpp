#include "presentation/history/FoundList.h"

#include "presentation/GlyphIcon.h"
#include "presentation/WindowColours.h"
#include "presentation/history/RunLine.h"
#include "presentation/history/RunList.h"
#include "presentation/history/RunWords.h"
#include "presentation/preview/ShownName.h"
#include "support/text/Text.h"

#include <QPainter>

namespace tavrin {

namespace {

QString shownName(const std::string& name) { return ShownName::of(text::fromBytes(name), false); }

QString headOf(const ShownRun& run) {
    return RunWords::day(RunWords::dayOf(run.run.heading.began().value_or(0))) + QStringLiteral(" · ") +
           RunListModel::detailsOf(run);
}

} // namespace

void FoundListModel::setFound(NamesFound newFound) {
    beginResetModel();
    names = std::move(newFound);
    lines.clear();
    for (std::size_t i = 0; i < names.hits.size(); ++i) {
        if (i == 0 || names.hits[i].run != names.hits[i - 1].run)
            lines.push_back({names.hits[i].run, std::nullopt});
        lines.push_back({names.hits[i].run, i});
    }
    endResetModel();
}

const NamesFound::Hit* FoundListModel::hitAt(const QModelIndex& index) const {
    const auto row = static_cast<std::size_t>(index.row());
    if (!index.isValid() || row >= lines.size() || !lines[row].hit)
        return nullptr;
    return &names.hits[*lines[row].hit];
}

int FoundListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(lines.size());
}

QVariant FoundListModel::data(const QModelIndex& index, int role) const {
    if (role != Qt::DisplayRole && role != Qt::AccessibleTextRole && role != Qt::ToolTipRole)
        return {};
    const NamesFound::Hit* hit = hitAt(index);
    if (!hit)
        return headOf(names.runs[lines[static_cast<std::size_t>(index.row())].run]);
    //: A hit of the search in past runs: the old name, then the new one.
    return tr("%1, renamed to %2").arg(shownName(hit->oldName), shownName(hit->newName));
}

Qt::ItemFlags FoundListModel::flags(const QModelIndex& index) const {
    return hitAt(index) ? Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren
                        : Qt::ItemNeverHasChildren;
}

QSize FoundDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const auto* model = qobject_cast<const FoundListModel*>(index.model());
    return {200, model && model->hitAt(index) ? RunLine::heightOfTwo(option) : RunLine::heightOfHead(option)};
}

void FoundDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const {
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setFont(option.font);
    const auto* model = qobject_cast<const FoundListModel*>(index.model());
    if (const NamesFound::Hit* hit = model ? model->hitAt(index) : nullptr)
        paintHit(*painter, option, *hit);
    else
        RunLine(*painter, option).paintHead(index.data().toString());
    painter->restore();
}

void FoundDelegate::paintHit(QPainter& painter, const QStyleOptionViewItem& option,
                             const NamesFound::Hit& hit) {
    const RunLine line(painter, option);
    line.paintGround();
    line.paintText(0, shownName(hit.oldName), option.palette.color(QPalette::PlaceholderText),
                   Qt::ElideMiddle);
    GlyphIcon::paint(painter, line.placeOfSign(1), Glyph::renamed, WindowColours::accentOf(option.palette),
                     option.direction == Qt::RightToLeft);
    line.paintText(1, shownName(hit.newName), option.palette.color(QPalette::Text), Qt::ElideMiddle);
    line.paintFocus();
}

} // namespace tavrin
