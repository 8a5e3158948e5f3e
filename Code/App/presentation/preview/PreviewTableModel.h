#pragma once

#include "presentation/WindowServices.h"
#include "presentation/preview/NameDifference.h"
#include "presentation/run/RunMarks.h"
#include "shell/asking/FrontEnd.h"
#include "shell/preview/PreviewList.h"

#include <QAbstractTableModel>
#include <QIcon>
#include <QString>
#include <algorithm>
#include <list>
#include <map>
#include <optional>
#include <unordered_map>
#include <vector>

namespace tavrin {

class ThumbnailLoader;

/// The rows of the preview list as a table. It holds ids alone and reads rows a page at a time when they are
/// painted; a number of pages is kept.
class PreviewTableModel final : public QAbstractTableModel {
    Q_OBJECT

  public:
    enum Column {
        tick,
        icon,
        currentName,
        state,
        newName,
        problem,
        regex1,
        regex6 = regex1 + 5,
        folder,
        columnCount_
    };
    enum class State { unchanged, renamed, madeDistinct, problem, byHand, leftOut };
    enum class Show { all, toBeRenamed, problems, notRenamed, chosen };

    static constexpr int stateRole = Qt::UserRole;
    static constexpr int reasonRole = Qt::UserRole + 1; ///< what is wrong with a row, or empty
    static constexpr int rowIdRole = Qt::UserRole + 2;
    static constexpr int spansRole = Qt::UserRole + 3; ///< vector of NameDifference::Span, for the two names

    static constexpr int outcomeRole = Qt::UserRole + 4; ///< what a run has made of a row: a RunOutcome

    PreviewTableModel(WindowServices services, ThumbnailLoader& thumbnails, QObject* parent);

    /// The list may have changed: rows are told anew where there are others, else as changed.
    void listChanged();
    /// The preview has foreseen other problems, told by the rows that have them, in ascending order.
    void setProblems(std::vector<RowId> found);
    void setShow(Show what);
    /// Shows these rows alone, told in ascending order.
    void setShowChosen(std::vector<RowId> rows);
    [[nodiscard]] Show show() const { return shown; }
    void setShowsThumbnails(bool on);
    void setShowsInvisibles(bool on);
    /// What a run makes of the rows. Whoever changes it has the rows painted anew.
    [[nodiscard]] RunMarks& runMarks() { return marks; }
    [[nodiscard]] const RunMarks& runMarks() const { return marks; }
    /// Other rows have names by hand, or are left out, which shows before the next preview.
    void handEditsChanged() { repaintAll(); }
    /// A thumbnail has come.
    void thumbnailChanged(RowId id);

    [[nodiscard]] const std::vector<RowId>& rowIds() const { return ids; }
    [[nodiscard]] const PreviewList::Row& rowAt(int row) const;
    [[nodiscard]] std::optional<int> rowOf(RowId id) const;
    [[nodiscard]] State stateOf(const PreviewList::Row& row) const;
    [[nodiscard]] const std::vector<RowId>& problems() const { return rowsWithProblems; }
    [[nodiscard]] bool hasProblem(RowId id) const { return std::ranges::binary_search(rowsWithProblems, id); }

    /// The text as it is shown: characters that would not show, or would move others, replaced.
    [[nodiscard]] QString shownName(const std::u16string& name) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

    [[nodiscard]] static Column columnOf(PreviewColumn column);

  private:
    struct Page {
        std::vector<PreviewList::Row> rows;
        std::vector<std::optional<NameDifference>> differences;
    };

    Page& pageOf(int row) const;
    void applyHandEdits(PreviewList::Row& row) const;
    [[nodiscard]] const NameDifference& differenceAt(int row) const;
    [[nodiscard]] QString toolTip(const PreviewList::Row& row) const;
    [[nodiscard]] QString folderOf(const PreviewList::Row& row) const;
    [[nodiscard]] QVariant textOf(const PreviewList::Row& row, int column) const;
    [[nodiscard]] std::vector<RowId> wantedIds() const;
    [[nodiscard]] QString spokenState(const PreviewList::Row& row) const;
    void repaintAll();

    const WindowServices services;
    ThumbnailLoader& thumbnails;
    std::vector<RowId> ids;
    std::vector<RowId> rowsWithProblems;
    RunMarks marks;
    std::vector<RowId> chosen;
    Show shown = Show::all;
    bool showsThumbnails = true;
    bool showsInvisibles = false;

    // Pages by number, the one used last at the front.
    mutable std::list<std::pair<int, Page>> pages;
    mutable std::unordered_map<int, std::list<std::pair<int, Page>>::iterator> pagePlaces;
};

} // namespace tavrin

Q_DECLARE_METATYPE(std::vector<tavrin::NameDifference::Span>)
