#pragma once

#include "presentation/WindowServices.h"
#include "presentation/history/HistoryValues.h"
#include "presentation/history/RunChoices.h"
#include "presentation/history/RunItems.h"

#include <QThreadPool>
#include <QWidget>
#include <atomic>
#include <memory>
#include <string>

class QAction;
class QLabel;
class QLineEdit;
class QListView;
class QPushButton;
class QStackedWidget;
class QTableView;

namespace tavrin {

class MenuButton;
class ProminentButton;
class RunListModel;

/// The past runs, their items and what has become of these, with the ways to undo, redo, finish and forget
/// them. Everything is read by workers, and looked at again whenever the window becomes active. Object name
/// "historyWindow".
class HistoryWindow final : public QWidget {
    Q_OBJECT

  public:
    explicit HistoryWindow(const WindowServices& shared);
    ~HistoryWindow() override;

    /// Comes up with this run chosen; empty: the one that was, or the newest.
    void showRun(const std::string& run);
    /// Reads all anew, if it is on show: a run has begun or ended.
    void reload();

  signals:
    /// The user wants to say how long runs are kept.
    void preferencesRequested();

  protected:
    void changeEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QWidget* buildLeft();
    QWidget* buildRight();
    QWidget* buildButtons();
    QWidget* buildEmpty();
    void buildTable();

    void runsRead(std::vector<ShownRun> runs);
    void choose(const QModelIndex& index);
    void readItems();
    void look();
    void arrange();
    /// Works on a thread of the pool and hands the result to `then` on the main thread, unless another
    /// request of the same kind has come meanwhile.
    template <typename Work, typename Then> void inBackground(int& newest, Work work, Then then);

    [[nodiscard]] const ShownRun* chosen() const;
    [[nodiscard]] RunChoices choices() const;
    void describe();
    void present(QPushButton& button, RunChoice choice);
    void perform(RunChoice choice);
    void forget();
    void forgetAllSettled();
    void reveal();
    void withText(bool onlySelected, std::function<void(const QString&)> then);
    void copyText(bool onlySelected);
    void exportText();
    void sizeColumns();
    void describeLimits();
    void applyColours();
    [[nodiscard]] std::string folder() const;

    const WindowServices services;
    RunListModel* runs;
    RunItemsModel* items;
    RunItemsModel::Arrangement arrangement;
    std::string wanted;    ///< the run to choose when the list is there
    std::string chosenRun; ///< its name
    std::shared_ptr<std::atomic<bool>> isLookUnwanted = std::make_shared<std::atomic<bool>>(false);
    bool areColumnsOwn = false; ///< the user has made them as wide as they are
    bool isSizingColumns = false;
    int newestList = 0;
    int newestItems = 0;
    int newestOrder = 0;
    int newestText = 0;
    int newestCommand = 0;

    QStackedWidget* pages;
    QListView* list;
    QTableView* table;
    QLineEdit* filter;
    QLabel* head;
    QLabel* details;
    QLabel* summary;
    QLabel* foot;
    QPushButton* forgetButton;
    QPushButton* revealButton;
    QPushButton* copyButton;
    QPushButton* otherButton;
    ProminentButton* mainButton;
    MenuButton* moreButton;
    QThreadPool threads; ///< the last to be made, the first to end
};

} // namespace tavrin
