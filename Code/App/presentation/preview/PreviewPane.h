#pragma once

#include "presentation/WindowServices.h"
#include "presentation/cards/QuestionCard.h"
#include "presentation/preview/PreviewTableModel.h"
#include "shell/asking/FrontEnd.h"
#include "shell/preview/SlicedWork.h"

#include <QItemSelection>
#include <QTimer>
#include <QWidget>
#include <array>
#include <memory>
#include <vector>

class QStackedWidget;

namespace tavrin {

class FindBar;
class ListBar;
class FolderOffer;
class MessageBars;
class ParameterBinding;
class PreviewTableView;
class ProblemBar;
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
    void selectPreviewTab(PreviewTab tab);
    /// A run has moved pictures to other names.
    void forgetPictures();
    /// The messages below the list.
    [[nodiscard]] MessageBars& messageBars() { return *bars; }
    void pathsAdded(const std::vector<std::string>& paths);
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
    void connectTable();
    void connectCommands();
    void listenToSettings();
    void applyRowHeight();
    void sortByColumn(int column);
    void showProblems();
    void removeSelected();
    /// Moves the selected rows by one place, which makes the order one by hand.
    void moveSelection(bool up);
    void openCurrent();
    void pasteFiles();
    void offerCommands(const QPoint& place);
    void showPage(bool isEmpty);
    void showListIfDue();
    [[nodiscard]] RowId idAt(int row) const;
    [[nodiscard]] std::optional<PreviewList::Row> currentRow() const;
    /// Where these rows are now.
    [[nodiscard]] QItemSelection placesOf(const std::vector<RowId>& selected) const;
    void goTo(int row);
    void revealForQuestion(const std::string& path);
    [[nodiscard]] std::vector<QRect> rowsInView(const QuestionText::Rows& rows) const;

    const WindowServices services;
    MainController& controller;
    WindowCommands& commands;
    ThumbnailLoader* thumbnails;
    PreviewTableModel* model;
    PreviewTableView* view;
    ListBar* listBar;
    FindBar* findBar;
    QStackedWidget* pages; ///< the table, or the invitation
    MessageBars* bars;
    FolderOffer* folderOffer;
    ProblemBar* problemBar;
    StatusRow* statusRow;
    SlicedWork longWork;
    QTimer scrollRest;
    bool isListDue = false; ///< the rows have been put in another order, which does not show yet
    std::unique_ptr<ParameterBinding> thumbnailBinding;
    std::shared_ptr<void> invisiblesObservation;
    std::array<std::pair<int, int>, PreviewTableModel::columnCount_> widthLimits{};
};

} // namespace tavrin
