#include "presentation/history/RunItems.h"

#include "presentation/QtText.h"
#include "presentation/WindowColours.h"
#include "presentation/history/NameSearch.h"
#include "presentation/history/RunWords.h"
#include "presentation/preview/ShownName.h"
#include "support/text/Text.h"

#include <QApplication>
#include <QCollator>
#include <algorithm>
#include <numeric>

namespace tavrin {

namespace {

QString shownName(const std::string& name) { return ShownName::of(text::fromBytes(name), false); }

/// One name in a line of its own.
QString inLine(const std::string& name) {
    return toQString(text::fromBytes(name)).replace('\n', ' ').replace('\t', ' ');
}

std::vector<QCollatorSortKey> keysOf(const RunContents& contents, int column) {
    QCollator collator;
    collator.setNumericMode(true);
    std::vector<QCollatorSortKey> keys;
    keys.reserve(contents.items.size());
    for (const RunContents::Item& item : contents.items)
        keys.push_back(collator.sortKey(column == RunItemsModel::oldNameColumn ? shownName(item.oldName)
                                        : column == RunItemsModel::newNameColumn
                                            ? shownName(item.newName)
                                            : RunItemsModel::nowOf(item)));
    return keys;
}

} // namespace

RunItemsModel::RunItemsModel(QObject* parent) : QAbstractTableModel(parent) {
    connect(&loader, &ThumbnailLoader::changed, this, [this] {
        if (!order.empty())
            emit dataChanged(index(0, pictureColumn), index(rowCount() - 1, pictureColumn),
                             {Qt::DecorationRole});
    });
}

RunItemsModel::Order RunItemsModel::arranged(const RunContents& contents, const Arrangement& how) {
    Order order(contents.items.size());
    std::iota(order.begin(), order.end(), 0U);
    if (!how.filter.isEmpty())
        std::erase_if(order, [&](std::uint32_t place) {
            const RunContents::Item& item = contents.items[place];
            return !isNamed(item.oldName, item.newName, how.filter);
        });
    if (how.column <= pictureColumn)
        return order;
    const std::vector<QCollatorSortKey> keys = keysOf(contents, how.column);
    const auto isBefore = [&](std::uint32_t a, std::uint32_t b) {
        return how.direction == Qt::AscendingOrder ? keys[a].compare(keys[b]) < 0
                                                   : keys[b].compare(keys[a]) < 0;
    };
    std::ranges::stable_sort(order, isBefore);
    return order;
}

void RunItemsModel::setContents(Contents newContents, Order newOrder) {
    const bool isSame = newOrder == order && newContents->items.size() == shown->items.size();
    if (!isSame)
        beginResetModel();
    shown = std::move(newContents);
    order = std::move(newOrder);
    if (!isSame)
        endResetModel();
    else if (!order.empty())
        emit dataChanged(index(0, pictureColumn), index(rowCount() - 1, nowColumn));
}

void RunItemsModel::setPictures(bool areShown, int pixels, double ratio) {
    hasPictures = areShown;
    loader.setSize(static_cast<int>(pixels * ratio), ratio);
}

int RunItemsModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(order.size());
}

int RunItemsModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : nowColumn + 1;
}

QVariant RunItemsModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || static_cast<std::size_t>(index.row()) >= order.size())
        return {};
    const RunContents::Item& item = itemAt(index.row());
    switch (role) {
    case Qt::DecorationRole:
        if (index.column() != pictureColumn)
            return {};
        return pictureOf(index.row());
    case Qt::DisplayRole:
        switch (index.column()) {
        case oldNameColumn:
            return shownName(item.oldName);
        case newNameColumn:
            return shownName(item.newName);
        case nowColumn:
            return nowOf(item);
        default:
            return {};
        }
    case Qt::ToolTipRole:
        return RunWords::pathText(shown->pathOf(item));
    case Qt::ForegroundRole:
        return index.column() == nowColumn ? colourOf(item) : QVariant();
    default:
        return {};
    }
}

QVariant RunItemsModel::pictureOf(int row) const {
    const RunContents::Item& item = itemAt(row);
    PreviewList::Row known;
    known.id = order[static_cast<std::size_t>(row)] + 1;
    known.fullPath = shown->pathOf(item);
    known.treatAsFolder = item.isFolder;
    return loader.imageFor(known, hasPictures);
}

QVariant RunItemsModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal)
        return {};
    if (role == Qt::TextAlignmentRole)
        return int(Qt::AlignLeft | Qt::AlignVCenter);
    if (role == Qt::AccessibleTextRole && section == pictureColumn)
        return tr("Picture");
    if (role != Qt::DisplayRole)
        return {};
    switch (section) {
    case oldNameColumn:
        return tr("Old Name");
    case newNameColumn:
        return tr("New Name");
    case nowColumn:
        return tr("Now");
    default:
        return {};
    }
}

QString RunItemsModel::nowOf(const RunContents::Item& item) {
    if (!item.where)
        return QStringLiteral("…");
    switch (item.where->now) {
    case ItemNow::done:
        return tr("has the new name");
    case ItemNow::old:
        return tr("has the old name");
    case ItemNow::standIn:
        return tr("has a temporary name");
    case ItemNow::replaced:
        return tr("another file has this name");
    case ItemNow::renamed:
        if (const auto moment = RunWords::momentOf(item.where->laterRun))
            return tr("now “%1”, by the run of %2")
                .arg(shownName(item.where->name), RunWords::moment(moment));
        return tr("now “%1”").arg(shownName(item.where->name));
    case ItemNow::unclear:
        return tr("can’t be told from another file");
    case ItemNow::gone:
        break;
    }
    return tr("not found");
}

QVariant RunItemsModel::colourOf(const RunContents::Item& item) const {
    const QPalette palette = QApplication::palette();
    const WindowColours& colours = WindowColours::of(palette);
    switch (item.where ? item.where->now : ItemNow::done) {
    case ItemNow::done:
    case ItemNow::old:
        break;
    case ItemNow::standIn:
    case ItemNow::renamed:
    case ItemNow::unclear:
        return colours.warningText;
    case ItemNow::replaced:
    case ItemNow::gone:
        return colours.errorText;
    }
    return palette.color(QPalette::PlaceholderText);
}

QString RunItemsModel::textOf(const RunContents& contents, const Order& rows) {
    QString text;
    for (const std::uint32_t row : rows) {
        const RunContents::Item& item = contents.items[row];
        text += inLine(item.oldName) + '\t' + inLine(item.newName) + '\t' + nowOf(item) + '\n';
    }
    return text;
}

} // namespace tavrin
