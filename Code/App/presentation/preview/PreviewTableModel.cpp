#include "presentation/preview/PreviewTableModel.h"

#include "engine/pipeline/RenameEngine.h"
#include "presentation/QtText.h"
#include "presentation/preview/ShownName.h"
#include "presentation/preview/ThumbnailLoader.h"
#include "shell/MainController.h"
#include "support/text/PathParts.h"
#include "support/text/Text.h"

#include <algorithm>
#include <array>
#include <span>

namespace tavrin {

namespace {

constexpr int rowsPerPage = 256;
constexpr std::size_t mostPages = 64;

const std::array<const char*, 6> stateSymbols{"\u2013", "\u2192", "\u29C9", "\u26A0", "\u270E", "\u2298"};
const std::array<const char*, 6> stateWords{QT_TRANSLATE_NOOP("tavrin::PreviewTableModel", "unchanged"),
                                            QT_TRANSLATE_NOOP("tavrin::PreviewTableModel", "will be renamed"),
                                            QT_TRANSLATE_NOOP("tavrin::PreviewTableModel", "made distinct"),
                                            QT_TRANSLATE_NOOP("tavrin::PreviewTableModel", "problem"),
                                            QT_TRANSLATE_NOOP("tavrin::PreviewTableModel", "by hand"),
                                            QT_TRANSLATE_NOOP("tavrin::PreviewTableModel", "left out")};

} // namespace

PreviewTableModel::PreviewTableModel(WindowServices shared, ThumbnailLoader& loader, QObject* parent)
    : QAbstractTableModel(parent), services(shared), thumbnails(loader),
      marks(shared.controller.renameEngine().runOutcomes(), shared.controller.nodeController()) {}

// --- What there is ---

std::vector<RowId> PreviewTableModel::wantedIds() const {
    PreviewList& list = services.controller.nodeController();
    switch (shown) {
    case Show::all:
        return list.arrangedObjects();
    case Show::toBeRenamed:
        return list.changingRows();
    case Show::problems:
    case Show::notRenamed:
    case Show::chosen:
        break;
    }
    const std::vector<RowId>& among = shown == Show::problems ? rowsWithProblems
                                      : shown == Show::chosen ? chosen
                                                              : marks.notRenamed();
    std::vector<RowId> wanted;
    std::ranges::copy_if(list.arrangedObjects(), std::back_inserter(wanted),
                         [&](RowId id) { return std::ranges::binary_search(among, id); });
    return wanted;
}

void PreviewTableModel::listChanged() {
    std::vector<RowId> wanted = wantedIds();
    if (wanted == ids) {
        repaintAll();
        return;
    }
    beginResetModel();
    ids = std::move(wanted);
    pages.clear();
    pagePlaces.clear();
    endResetModel();
}

void PreviewTableModel::repaintAll() {
    for (auto& [number, page] : pages)
        page.isStale = true;
    if (!ids.empty())
        emit dataChanged(index(0, 0), index(static_cast<int>(ids.size()) - 1, columnCount_ - 1));
}

void PreviewTableModel::setProblems(std::vector<RowId> found) {
    if (found == rowsWithProblems)
        return;
    rowsWithProblems = std::move(found);
    listChanged();
}

void PreviewTableModel::setShow(Show what) {
    shown = what;
    listChanged();
}

void PreviewTableModel::setShowChosen(std::vector<RowId> rows) {
    chosen = std::move(rows);
    setShow(Show::chosen);
}

void PreviewTableModel::setShowsThumbnails(bool on) {
    showsThumbnails = on;
    repaintAll();
}

void PreviewTableModel::setShowsInvisibles(bool on) {
    showsInvisibles = on;
    repaintAll();
}

void PreviewTableModel::thumbnailChanged(RowId id) {
    for (const auto& [number, page] : pages) {
        const auto found = std::ranges::find(page.rows, id, &PreviewList::Row::id);
        if (found == page.rows.end())
            continue;
        const QModelIndex place =
            index(number * rowsPerPage + static_cast<int>(found - page.rows.begin()), icon);
        emit dataChanged(place, place, {Qt::DecorationRole});
        return;
    }
}

// --- Rows ---

PreviewTableModel::Page& PreviewTableModel::pageOf(int row) const {
    const int number = row / rowsPerPage;
    if (const auto known = pagePlaces.find(number); known != pagePlaces.end()) {
        pages.splice(pages.begin(), pages, known->second);
    } else {
        pages.emplace_front(number, Page{.rows = {}, .differences = {}, .isStale = true});
        pagePlaces[number] = pages.begin();
    }
    if (pages.front().second.isStale)
        read(number, pages.front().second);
    if (pages.size() > mostPages) {
        pagePlaces.erase(pages.back().first);
        pages.pop_back();
    }
    return pages.front().second;
}

void PreviewTableModel::read(int number, Page& page) const {
    const auto first = static_cast<std::size_t>(number) * rowsPerPage;
    const auto count = std::min<std::size_t>(rowsPerPage, ids.size() - first);
    std::vector<PreviewList::Row> rows =
        services.controller.nodeController().rowsWithIds(std::span(ids).subspan(first, count));
    for (std::size_t i = 0; i < count; ++i)
        if (rows[i].id != noRow)
            applyHandEdits(rows[i]);
        else if (i < page.rows.size())
            rows[i] = std::move(page.rows[i]);
    page.rows = std::move(rows);
    page.differences.assign(count, std::nullopt);
    page.isStale = false;
}

/// What has been settled since the last preview counts at once.
void PreviewTableModel::applyHandEdits(PreviewList::Row& row) const {
    const HandEdits& edits = services.controller.handEdits();
    const bool hasAny = edits.pinned() > 0 || edits.leftOut() > 0;
    if (!hasAny && !row.isPinned && !row.isLeftOut)
        return;
    const std::u16string pinned = edits.namesCount() ? edits.pinnedName(row.fullPath) : std::u16string();
    if (!pinned.empty())
        row.finalName = pinned;
    else if (row.isPinned)
        row.finalName = edits.computedName(row);
    row.isPinned = !pinned.empty();
    row.isLeftOut = !edits.takesPart(row.fullPath);
    if (row.isLeftOut)
        row.finalName = row.name;
    row.diff = row.finalName != row.name;
}

const PreviewList::Row& PreviewTableModel::rowAt(int row) const {
    return pageOf(row).rows.at(static_cast<std::size_t>(row % rowsPerPage));
}

const NameDifference& PreviewTableModel::differenceAt(int row) const {
    Page& page = pageOf(row);
    const auto place = static_cast<std::size_t>(row % rowsPerPage);
    std::optional<NameDifference>& difference = page.differences.at(place);
    if (!difference) {
        const PreviewList::Row& shownRow = page.rows[place];
        difference =
            shownRow.diff ? NameDifference::between(shownRow.name, shownRow.finalName) : NameDifference();
    }
    return *difference;
}

std::optional<int> PreviewTableModel::rowOf(RowId id) const {
    const auto found = std::ranges::find(ids, id);
    return found == ids.end() ? std::nullopt : std::optional(static_cast<int>(found - ids.begin()));
}

PreviewTableModel::State PreviewTableModel::stateOf(const PreviewList::Row& row) const {
    if (row.isLeftOut)
        return State::leftOut;
    if (row.problem != NameProblem::none)
        return State::problem;
    if (row.isPinned)
        return State::byHand;
    if (!row.diff)
        return State::unchanged;
    return row.madeDistinct ? State::madeDistinct : State::renamed;
}

// --- The table ---

int PreviewTableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(ids.size());
}

int PreviewTableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : columnCount_;
}

QString PreviewTableModel::shownName(const std::u16string& name) const {
    return ShownName::of(name, showsInvisibles);
}

/// From the folder that all lie in, so that what tells them apart is in sight; whole where that is the root,
/// or where all lie in one.
QString PreviewTableModel::folderOf(const PreviewList::Row& row) const {
    std::string_view place = PathParts(row.fullPath).folder;
    const RowFolders& all = services.controller.previewControl().listFolders();
    if (all.count > 1 && all.common.size() > 1 && place.starts_with(all.common))
        place = place.size() == all.common.size() ? "." : place.substr(all.common.size() + 1);
    return shownName(text::fromBytes(place));
}

QVariant PreviewTableModel::textOf(const PreviewList::Row& row, int column) const {
    switch (column) {
    case currentName:
        return shownName(row.name);
    case newName:
        return shownName(row.finalName);
    case state:
        return QString::fromUtf8(stateSymbols[static_cast<std::size_t>(stateOf(row))]);
    case folder:
        return folderOf(row);
    case problem:
        return ShownName::note(row.note);
    default:
        if (column >= regex1 && column <= regex6 && row.regex)
            return shownName((*row.regex)[static_cast<std::size_t>(column - regex1)]);
        return {};
    }
}

QString PreviewTableModel::toolTip(const PreviewList::Row& row) const {
    QString text = shownName(row.name).toHtmlEscaped();
    if (row.diff)
        text += "<br>\u2192 " + shownName(row.finalName).toHtmlEscaped();
    if (const QString reason = marks.reasonOf(row); !reason.isEmpty())
        text += "<br><b>" + reason.toHtmlEscaped() + "</b>";
    else if (!row.problemMessage.empty())
        text += "<br><b>" + tr(row.problemMessage.c_str()).toHtmlEscaped() + "</b>";
    else if (row.madeDistinct)
        text += "<br>" + tr("made distinct, since another item has the same name");
    const QString bytes = ShownName::bytesNote(row.name);
    return bytes.isEmpty() ? text : text + "<br>" + bytes.toHtmlEscaped();
}

QString PreviewTableModel::spokenState(const PreviewList::Row& row) const {
    switch (marks.outcomeOf(row)) {
    case RunOutcome::inHand:
        return tr("in hand");
    case RunOutcome::done:
        return tr("done");
    case RunOutcome::failed:
        return tr("not renamed: %1").arg(marks.reasonOf(row));
    case RunOutcome::leftOut:
        return tr("left out");
    case RunOutcome::open:
        break;
    }
    return tr(stateWords[static_cast<std::size_t>(stateOf(row))]);
}

QVariant PreviewTableModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const PreviewList::Row& row = rowAt(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return textOf(row, index.column());
    case Qt::DecorationRole:
        return index.column() == icon ? thumbnails.imageFor(row, showsThumbnails) : QVariant();
    case Qt::CheckStateRole:
        if (index.column() != tick)
            return {};
        return row.isLeftOut ? Qt::Unchecked : Qt::Checked;
    case Qt::ToolTipRole:
        return index.column() == folder
                   ? shownName(text::fromBytes(PathParts(row.fullPath).folder)).toHtmlEscaped()
                   : toolTip(row);
    case Qt::TextAlignmentRole:
        return index.column() == state ? QVariant(Qt::AlignCenter) : QVariant();
    case Qt::AccessibleTextRole:
        return tr("%1, new name %2, %3").arg(shownName(row.name), shownName(row.finalName), spokenState(row));
    case stateRole:
        return static_cast<int>(stateOf(row));
    case outcomeRole:
        return static_cast<int>(marks.outcomeOf(row));
    case reasonRole:
        if (QString reason = marks.reasonOf(row); !reason.isEmpty())
            return reason;
        return ShownName::note(row.note);
    case rowIdRole:
        return row.id;
    case spansRole:
        if (index.column() != currentName && index.column() != newName)
            return {};
        return QVariant::fromValue(index.column() == currentName ? differenceAt(index.row()).removed
                                                                 : differenceAt(index.row()).added);
    default:
        return {};
    }
}

QVariant PreviewTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case currentName:
        return tr("Current Name");
    case newName:
        return tr("New Name");
    case folder:
        return tr("Folder");
    case problem:
        return tr("Problem");
    default:
        return section >= regex1 && section <= regex6 ? QString("$%1").arg(section - regex1 + 1) : QString();
    }
}

Qt::ItemFlags PreviewTableModel::flags(const QModelIndex& index) const {
    if (!index.isValid())
        return Qt::ItemIsDropEnabled;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemNeverHasChildren;
}

PreviewTableModel::Column PreviewTableModel::columnOf(PreviewColumn column) {
    switch (column) {
    case PreviewColumn::path:
        return folder;
    case PreviewColumn::currentName:
        return currentName;
    case PreviewColumn::newName:
        return newName;
    case PreviewColumn::problem:
        return problem;
    case PreviewColumn::regex1:
    case PreviewColumn::regex2:
    case PreviewColumn::regex3:
    case PreviewColumn::regex4:
    case PreviewColumn::regex5:
    case PreviewColumn::regex6:
        break;
    }
    return static_cast<Column>(regex1 + static_cast<int>(column) - static_cast<int>(PreviewColumn::regex1));
}

} // namespace tavrin
