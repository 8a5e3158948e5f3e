#pragma once

#include "presentation/WindowServices.h"
#include "presentation/preview/PreviewTableModel.h"
#include "presentation/preview/QuestionRows.h"
#include "shell/asking/FrontEnd.h"
#include "shell/preview/SlicedWork.h"

#include <QItemSelection>
#include <QTimer>
#include <QWidget>
#include <array>
#include <functional>
#include <memory>
#include <vector>

class QStackedWidget;

namespace tavrin {

class Chip;
class EmptyView;
class FindBar;
class HandEditing;
class ListBar;
class FolderOffer;
class MessageBars;
class NamesAsTextPage;
class PreviewColumns;
class ProblemGuide;
class ParameterBinding;
class PreviewTableView;
class RowMap;
class StatusRow;
class ThumbnailLoader;
class WindowCommands;

/// The list of items with their new names, its filters, the bar of problems and the status line. Object name
/// "previewPane".
class PreviewPane final : public QWidget {
    Q_OBJECT

  public:
    using Show = PreviewTableModel::Show;

    PreviewPane(const WindowServices& services, WindowCommands& commands);
    ~PreviewPane() override;

    void setColumnWidth(PreviewColumn column, int minimum, int maximum, int width);
    void setColumnHidden(PreviewColumn column, bool hidden);
    void sizeColumnsToFit();
    /// The rows may have changed; selection and place stay where they were.
    void listChanged();
    void previewFinished();
    /// Takes over what the progress record displays: bar and status line.
    void refreshProgress();
    /// A run shows in the list, in which nothing can be changed until it ends.
    void beginRun();
    void focusList();
    void endRun();
    /// Whether the run waits for an answer.
    void setWaiting(bool waits);
    void selectPreviewTab(PreviewTab tab);
    /// A run has moved pictures to other names.
    void forgetPictures();
    /// Names that are typed, ticks, and what of it can be undone.
    [[nodiscard]] HandEditing& handEditing() { return *hands; }
    /// The messages below the list.
    [[nodiscard]] MessageBars& messageBars() { return *bars; }
    /// Has what comes on the list next scrolled to.
    void awaitArrivals();
    void pathsAdded(const std::vector<std::string>& paths);
    /// What stands between the bars: the table, or what takes its place.
    [[nodiscard]] QWidget& listPages();
    [[nodiscard]] std::size_t problemCount() const;
    void enterDropletEditMode();
    /// Whether the window is so low that the rows around the list had better be, too.
    void setLow(bool isLow);

    [[nodiscard]] std::vector<RowId> selection() const;
    /// Of the selected rows, or of the whole list where none is; absent where that is empty.
    [[nodiscard]] std::optional<PreviewList::Row> firstRow() const;
    /// How many of the rows shown will change, as of the last preview.
    [[nodiscard]] std::int32_t itemsToRename() const;
    /// What of the list shows: a view only, all items take part all the same.
    void setShow(Show what);
    /// The rows that are so, also after later previews, until another choice is made. The label says it.
    void showWhere(const QString& label, std::function<bool(const NodeRow&)> isWanted);
    void goToProblem(bool forward);
    /// "current name, tab, new name" of the selected rows to the clipboard.
    void copySelected();

    /// Where a question of a run is put: over the list, beside its rows.
    [[nodiscard]] QuestionCard::Place questionPlace();

  signals:
    void selectionChanged();
    /// One of the beginnings that an empty list offers has been chosen.
    void begun();

  private:
    void buildTable();
    void connectHands();
    void makeProblemGuide();
    void connectTextPage();
    void toggleTextPage();
    void connectTable();
    void connectCommands();
    void listenToSettings();
    void applyRowHeight();
    void sortByColumn(int column);
    void showSorting();
    void lookForChosen();
    void showChosen(std::vector<RowId> rows);
    /// Scrolls to what was added, if that is awaited and there.
    bool scrollToArrivals();
    void removeSelected();
    /// Moves the selected rows by one place, which makes the order one by hand.
    void moveSelection(bool up);
    void openCurrent();
    void pasteFiles();
    void offerCommands(const QPoint& place);
    /// The table, the invitation of an empty list, or why nothing shows.
    void showPage();
    [[nodiscard]] QWidget* pageDue();
    [[nodiscard]] bool explainHiddenItems();
    /// The row in hand; -1 for none.
    [[nodiscard]] int currentPlace() const;
    [[nodiscard]] RowId idAt(int row) const;
    [[nodiscard]] std::optional<PreviewList::Row> currentRow() const;
    /// Where these rows are now.
    [[nodiscard]] QItemSelection placesOf(const std::vector<RowId>& selected) const;
    void goTo(int row);
    void goToFailed();

    const WindowServices services;
    MainController& controller;
    WindowCommands& commands;
    ThumbnailLoader* thumbnails;
    PreviewTableModel* model;
    PreviewTableView* view;
    ListBar* listBar;
    FindBar* findBar;
    RowMap* rowMap;
    HandEditing* hands;
    QStackedWidget* pages; ///< of which one stands in the place of the list
    QWidget* invitation = nullptr;
    EmptyView* emptyView;
    MessageBars* bars;
    FolderOffer* folderOffer;
    NamesAsTextPage* textPage;
    std::unique_ptr<ProblemGuide> problems;
    std::unique_ptr<PreviewColumns> columns;
    QuestionRows questionRows;
    StatusRow* statusRow;
    SlicedWork longWork;
    QTimer scrollRest;
    bool isRunShown = false;
    bool isWaiting = false;
    Chip* sortingChip;
    std::vector<SortDescriptor> shownOrder;
    bool isMoving = false;               ///< rows by keys
    std::optional<RowId> arrivalsBehind; ///< the last row that was there before
    std::function<bool(const NodeRow&)> isChosen;
    QString chosenLabel;
    std::unique_ptr<ParameterBinding> thumbnailBinding;
    std::shared_ptr<void> invisiblesObservation;
};

} // namespace tavrin
