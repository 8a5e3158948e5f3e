#pragma once

#include "presentation/history/RunChoices.h"

#include <QWidget>

class QPushButton;

namespace tavrin {

class MenuButton;
class ProminentButton;

/// The buttons below a past run. They only tell what is wanted.
class RunButtons final : public QWidget {
    Q_OBJECT

  public:
    RunButtons();

    /// Null: there is no run. `canRun`: whether an undo or redo may begin now.
    void describe(const ShownRun* run, const RunContents& contents, bool canRun);
    [[nodiscard]] bool canForget() const;
    /// As if the prominent one was clicked, if it is there.
    void clickMain();

  signals:
    void forgetRequested();
    void forgetAllRequested();
    void revealRequested();
    void copyRequested();
    void exportRequested();
    void commandRequested(tavrin::RunChoice choice);

  private:
    QPushButton* add(const char* name, const QString& label, QLayout& row);
    void addMenu();
    static void present(QPushButton& button, RunChoice choice, const RunChoices& choices, bool isMain,
                        bool canRun);

    RunChoice first = RunChoice::none;
    RunChoice second = RunChoice::none;
    QPushButton* forgetButton;
    QPushButton* revealButton;
    QPushButton* copyButton;
    QPushButton* otherButton;
    ProminentButton* mainButton;
};

} // namespace tavrin
