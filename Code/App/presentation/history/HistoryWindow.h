#pragma once

#include "presentation/LatestWork.h"
#include "presentation/WindowServices.h"
#include "presentation/history/NameSearch.h"
#include "presentation/history/RunChoices.h"

#include <QWidget>
#include <string>

class QLabel;
class QLineEdit;
class QStackedWidget;

namespace tavrin {

class RunButtons;
class RunTable;
class RunsPane;

/// The past runs, their items and what has become of these, with the ways to undo, redo, finish and forget
/// them. Everything is read by workers, and looked at again whenever the window becomes active. Object name
/// "historyWindow".
class HistoryWindow final : public QWidget {
    Q_OBJECT

  public:
    explicit HistoryWindow(const WindowServices& shared);

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
    void makeParts();
    void makeLabels();
    void connectButtons();
    QWidget* layOutRun();
    QWidget* layOutHalves();
    QWidget* makeEmptyPage();

    void runsRead(std::vector<ShownRun> read);
    void choose();
    void chooseHit(const NamesFound::Hit& hit, const std::string& run, const QString& text);
    void describe();
    [[nodiscard]] QString detailsOf(const ShownRun& run) const;
    /// Null until its items are on their way.
    [[nodiscard]] const ShownRun* chosen() const;

    void perform(RunChoice choice);
    void forget();
    void askToForgetAll();
    void copyText(bool onlySelected);
    void exportText();
    void write(const QString& text, const std::string& path);
    void applyColours();
    [[nodiscard]] std::string folder() const;

    const WindowServices services;
    std::string wanted;    ///< the run to choose when the list is there
    std::string chosenRun; ///< its name
    QString filterToBe;    ///< of the table, for the next run that is chosen

    QStackedWidget* pages;
    RunsPane* left;
    RunTable* table;
    RunButtons* buttons;
    QLineEdit* filter;
    QLabel* head;
    QLabel* details;
    QLabel* summary;
    LatestWork listing;
    LatestWork commands;
};

} // namespace tavrin
