#pragma once

#include "presentation/WindowServices.h"
#include "store/rows/NodeRow.h"

#include <QKeySequence>
#include <QObject>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class QAction;
class QMainWindow;
class QMenu;

namespace tavrin {

class ParameterBinding;
enum class RunKind : std::uint8_t;

/// The commands of the window: menus, shortcuts, and which are on at the moment. Each is an action of the
/// window and bears as object name the operation that it stands for. What a command does to a part of the
/// window is connected by that part.
class WindowCommands final : public QObject {
    Q_OBJECT

  public:
    WindowCommands(QMainWindow& window, const WindowServices& services);
    ~WindowCommands() override;

    void fillPresetMenu(const std::vector<std::u16string>& titles);
    /// Brings what is on and what is ticked in line with the application and with the selected rows.
    void refresh(const std::vector<RowId>& selection);
    /// Whether a run is under way, which turns all commands off at the next refresh.
    void setRunning(bool running) { isRunning = running; }
    /// Whether names can be edited as text, and why not where that is not evident.
    void allowText(bool areAllowed, const QString& reason);
    void enterDropletEditMode();

    // The commands that parts of the window perform, or offer in buttons and menus of their own.
    QAction* addFiles;
    QAction* addFolder;
    QAction* removeFile;
    QAction* clearPreview;
    QAction* openFile;
    QAction* revealFile;
    QAction* createFileList;
    QAction* createDroplet;
    QAction* ok;
    QAction* applyAndQuit;
    QAction* applyButDontQuit;
    QAction* copy;
    QAction* findInList;
    QAction* editNewName;
    QAction* unpinNames;
    QAction* namesAsText;
    QAction* findNext;
    QAction* findPrevious;
    QAction* nextProblem;
    QAction* previousProblem;
    QAction* findAction;
    QAction* resetToDefaults;
    QAction* addAction;
    QAction* removeAction;
    QAction* clearActions;
    QAction* nudgeActionUp;
    QAction* nudgeActionDown;
    QAction* stepActive;
    QAction* copyAsCommand;
    QAction* copySteps;
    QAction* openRecipe;
    QAction* showRecipeLine;
    QAction* showAllItems;
    QAction* showItemsToBeRenamed;
    QAction* showProblems;
    QAction* showNotRenamed; ///< what the last run has left
    QAction* moveRowUp;
    QAction* moveRowDown;
    QAction* processFiles;
    QAction* processFolders;
    QAction* processSubfolders;
    QAction* showHelpOnAction;
    QAction* showHistory;

  signals:
    /// A run is wanted: what is being typed must count before.
    void runWanted();
    /// Copying and pasting while no field of text has the focus, so that it is about the list.
    void rowsCopied();
    void filesPasted();
    /// The same of the keys that undo and redo in text.
    void undoRequested();
    void redoRequested();

  private:
    QAction* add(QMenu* menu, const char* name, const QString& text, const QKeySequence& keys = {});
    template <typename Effect>
    QAction* add(QMenu* menu, const char* name, const QString& text, const QKeySequence& keys, Effect effect);
    QAction* addForText(QMenu* menu, const char* slot, const QString& text, QKeySequence::StandardKey keys,
                        void (WindowCommands::*otherwise)() = nullptr);
    QAction* addSetting(QMenu* menu, const char* key, const QString& text, const QKeySequence& keys = {});
    QMenu* addMenu(const QString& title);
    void addFileMenu();
    void addEditMenu();
    void addUndos(QMenu* menu);
    void addStepsMenu();
    void addViewMenu();
    void addPresetsMenu();
    void addHelpMenu();
    void describe(QAction& command, RunKind kind);
    void tellAbout();

    QMainWindow& window;
    const WindowServices services;
    std::vector<QAction*> all;
    QAction* showMultistepDrawer = nullptr;
    QAction* showPath = nullptr;
    QAction* showTickBoxes = nullptr;
    QAction* showInvisibles = nullptr;
    QAction* manualOrder = nullptr;
    QAction* saveAsPreset = nullptr;
    QAction* checkForUpdates = nullptr;
    QMenu* presetsMenu = nullptr;
    std::vector<QAction*> presetActions;
    QAction* presetsEnd = nullptr;
    std::vector<std::unique_ptr<ParameterBinding>> settings;
    bool isRunning = false;
    bool areNamesText = false; ///< can be
    std::shared_ptr<void> feedObservation;
};

} // namespace tavrin
