#pragma once

#include "presentation/WindowServices.h"
#include "shell/commands/RecipeCommands.h"

#include <QObject>
#include <string>
#include <vector>

namespace tavrin {

class MessageBars;
class WindowCommands;

/// Steps as text between the window and its surroundings: copied, pasted, opened from files. A bar tells what
/// has come, and takes it back.
class RecipeClipboard final : public QObject {
    Q_OBJECT

  public:
    /// `stepsPane`: where pasting is about steps; `listPane`: where it is too, while the list is empty.
    RecipeClipboard(const WindowServices& services, WindowCommands& commands, MessageBars& messageBars,
                    QWidget& stepsPane, QWidget& listPane);

    /// Opens what was dropped on the steps, if that is one file with a recipe in it, or one that is called
    /// so. Paths in bytes.
    bool openDropped(const std::vector<std::string>& paths);

  private:
    void copyCommand();
    void copySteps();
    void paste();
    void askForFile();
    void tellOpened(const RecipeCommands::Outcome& outcome);
    void tell(const RecipeCommands::Outcome& outcome, const QString& done);
    void undo();
    void redo();
    [[nodiscard]] bool isAboutSteps() const;

    const WindowServices services;
    RecipeCommands& recipes;
    MessageBars& bars;
    QWidget& steps;
    QWidget& list;
};

} // namespace tavrin
