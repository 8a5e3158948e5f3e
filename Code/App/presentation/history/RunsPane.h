#pragma once

#include "presentation/LatestWork.h"
#include "presentation/history/FoundList.h"
#include "presentation/history/RunList.h"

#include <QWidget>
#include <string>

class QLabel;
class QLineEdit;
class QListView;
class QStackedWidget;

namespace tavrin {

class UserDefaults;

/// The past runs to choose from, with a search for a name in all of them, whose hits stand in their place for
/// as long as the field has a text.
class RunsPane final : public QWidget {
    Q_OBJECT

  public:
    /// `userDefaults` tell how long runs are kept, and outlive it.
    explicit RunsPane(UserDefaults& userDefaults);

    [[nodiscard]] const std::vector<ShownRun>& runs() const { return model->runs(); }
    /// Null: there is none.
    [[nodiscard]] const ShownRun* chosen() const;
    /// Takes over what was read, and chooses the run of this name, or the newest. Tells of it by `chose`,
    /// also if it is the one that was.
    void setRuns(std::vector<ShownRun> newRuns, const std::string& name);
    void choose(const std::string& name);
    /// The runs are to be seen again.
    void endSearch();
    [[nodiscard]] bool isSearching() const;
    void takeFocus();
    /// Where keys are meant for the chosen run.
    [[nodiscard]] QListView* view() const { return list; }
    void describeLimits();
    void applyColours();
    [[nodiscard]] QSize sizeHint() const override { return {maximumWidth(), QWidget::sizeHint().height()}; }

  signals:
    void chose();
    /// The user has chosen a hit of the search for the text.
    void hitChosen(const tavrin::NamesFound::Hit& hit, const std::string& run, const QString& text);
    /// The user wants to say how long runs are kept.
    void preferencesRequested();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QListView* makeList(const char* name, const QString& spoken, QAbstractItemModel* itsModel,
                        QAbstractItemDelegate* delegate);
    void makeField();
    void makeFound();
    void makeFoot();
    void search();
    void show(NamesFound found);
    void chooseHit(const QModelIndex& index);

    UserDefaults& defaults;
    RunListModel* model;
    FoundListModel* found;
    QLineEdit* field;
    QStackedWidget* pages;
    QListView* list;
    QListView* hits;
    QLabel* count;
    QLabel* foot;
    LatestWork searching;
};

} // namespace tavrin
