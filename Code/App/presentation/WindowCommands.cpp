#include "presentation/WindowCommands.h"

#include "actions/CompositeRenameAction.h"
#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "documents/UpdateFeed.h"
#include "platform/propertylists/UserDefaults.h"
#include "presentation/Dialogs.h"
#include "presentation/FileBrowser.h"
#include "presentation/MainWindow.h"
#include "presentation/QtText.h"
#include "presentation/TextCommands.h"
#include "presentation/dialogs/OrganizePresetsDialog.h"
#include "presentation/dialogs/PreferencesWindow.h"
#include "presentation/dialogs/PresetDialog.h"
#include "presentation/dialogs/ShortcutsDialog.h"
#include "presentation/preview/PreviewPane.h"
#include "presentation/preview/ShownName.h"
#include "presentation/settings/SettingsPane.h"
#include "presentation/steps/StepsPane.h"
#include "shell/commands/MainController.h"
#include "support/text/Text.h"
#include "support/values/ValueTransformers.h"

#include <QAction>
#include <QApplication>
#include <QDesktopServices>
#include <QIcon>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QUrl>
#include <functional>
#include <map>
#include <stdexcept>

namespace tavrin {

namespace {

using Effect = std::function<void()>;

constexpr const char* undoRename = "Undo Last Rename…";
constexpr const char* redoRename = "Redo Rename…";
/// Of an entry that names a folder, in pixels.
constexpr int widestDescription = 420;
constexpr const char* contactPage = "https://calderwick.net/tavrin/contact";

bool isOn(const TVRNGlobalPreferencesPseudoAction& settings, const char* key) {
    const auto value = settings.valueForKey(key);
    return value && intValue(*value) != 0;
}

} // namespace

struct WindowCommands::Parts {
    Parts(MainWindow& mainWindow, const WindowServices& shared)
        : window(mainWindow), services(shared), controller(shared.controller) {}

    /// A command of the window under the name of its operation. `text` may be changed later.
    QAction* add(QMenu* menu, const char* name, const char* text, const QKeySequence& keys, Effect effect) {
        auto* action = new QAction(QString::fromUtf8(text), &window);
        action->setObjectName(name);
        action->setShortcut(keys);
        action->setMenuRole(QAction::NoRole);
        QObject::connect(action, &QAction::triggered, &window, [effect = std::move(effect)] { effect(); });
        menu->addAction(action);
        actions.emplace(name, action);
        return action;
    }

    /// A tick that stands for a global setting of 1 or 0.
    void addSetting(QMenu* menu, const char* key, const char* text, const QKeySequence& keys = {}) {
        QAction* action = add(menu, key, text, keys, [this, key = std::string(key)] {
            controller.globalSettings().setValue(actions.at(key)->isChecked() ? 1 : 0, key);
        });
        action->setCheckable(true);
        settings.push_back(key);
    }

    /// Gives a command the words for what it would do now, or turns it off where that is nothing.
    void describe(const char* name, const char* otherwise, const std::string& text) {
        QAction* action = actions.at(name);
        QString shown = window.fontMetrics().elidedText(ShownName::of(text::fromUtf8(text), false),
                                                        Qt::ElideRight, widestDescription);
        if (!shown.endsWith("…"))
            shown += "…";
        action->setText(text.empty() ? QString(otherwise) : shown.replace('&', "&&"));
        action->setEnabled(!text.empty() && !isRunning && controller.validateUserInterfaceItem());
    }

    void addFileMenu();
    void addEditMenu();
    void addStepsMenu();
    void addViewMenu();
    void addPresetsMenu();
    void addHelpMenu();

    QMenu* addMenu(const char* title) { return window.menuBar()->addMenu(QString::fromUtf8(title)); }

    MainWindow& window;
    const WindowServices services;
    MainController& controller;
    std::map<std::string, QAction*, std::less<>> actions;
    std::vector<std::string> settings;
    QMenu* presetsMenu = nullptr;
    std::vector<QAction*> presetActions;
    QAction* presetsEnd = nullptr;
    bool isRunning = false;
    std::shared_ptr<void> feedObservation;
};

void WindowCommands::Parts::addFileMenu() {
    QMenu* menu = addMenu("&File");
    add(menu, "addFiles", "&Add Files…", QKeySequence::Open, [this] { window.addByDialog(false); });
    add(menu, "addFolder", "Add F&older…", QKeySequence("Ctrl+Shift+O"),
        [this] { window.addByDialog(true); });
    menu->addSeparator();
    add(menu, "removeFile", "&Remove from List", {},
        [this] { controller.removeFile(window.previewPane().selection()); });
    add(menu, "clearPreview", "C&lear List", QKeySequence("Ctrl+Shift+Del"),
        [this] { controller.clearPreview(); });
    add(menu, "reloadPreview", "Re&load List", QKeySequence("F5"), [this] { controller.rereadList(); });
    menu->addSeparator();
    add(menu, "openFile", "&Open", QKeySequence("Ctrl+Shift+Return"),
        [this] { window.previewPane().openSelected(); });
    add(menu, "revealFile", "Show in File &Manager", QKeySequence("Ctrl+Shift+F"),
        [this] { window.previewPane().revealSelected(); });
    menu->addSeparator();
    add(menu, "createFileList", "Save L&ist…", QKeySequence("Ctrl+E"),
        [this] { controller.createFileList(); });
    add(menu, "createDroplet", "Create &Droplet…", QKeySequence("Ctrl+D"),
        [this] { controller.createDroplet(); });
    menu->addSeparator();
    add(menu, "ok", "Re&name", QKeySequence("Ctrl+Return"), [this] { controller.ok(); });
    add(menu, "applyAndQuit", "Rename and &Quit", QKeySequence("Ctrl+Alt+Return"),
        [this] { controller.applyAndQuit(); });
    add(menu, "applyButDontQuit", "Rename, Don’t Q&uit", {}, [this] { controller.applyButDontQuit(); });
    menu->addSeparator();
    add(menu, "cancel", "&Quit", QKeySequence::Quit, [this] { controller.cancel(); });
}

void WindowCommands::Parts::addEditMenu() {
    QMenu* menu = addMenu("&Edit");
    // Fields of text take these keys themselves; elsewhere copying and pasting is about the list.
    const auto addForText = [&](const char* slot, const char* text, QKeySequence::StandardKey keys,
                                Effect otherwise) {
        add(menu, slot, text, keys, [slot, otherwise = std::move(otherwise)] {
            if (!TextCommands::perform(slot))
                otherwise();
        });
    };
    addForText("undo", "&Undo", QKeySequence::Undo, [] {});
    addForText("redo", "&Redo", QKeySequence::Redo, [] {});
    menu->addSeparator();
    TakeBackCommands& takeBacks = controller.takeBackCommands();
    add(menu, "undoRename", undoRename, QKeySequence("Ctrl+Alt+Z"),
        [&takeBacks] { takeBacks.takeBack(RunKind::undo); });
    add(menu, "redoRename", redoRename, QKeySequence("Ctrl+Alt+Shift+Z"),
        [&takeBacks] { takeBacks.takeBack(RunKind::redo); });
    // What is next may have come from another program; the shortcuts work whatever the menu said last.
    QObject::connect(menu, &QMenu::aboutToShow, &window, [this, &takeBacks] {
        describe("undoRename", undoRename, takeBacks.description(RunKind::undo));
        describe("redoRename", redoRename, takeBacks.description(RunKind::redo));
    });
    QObject::connect(
        menu, &QMenu::aboutToHide, &window,
        [this] {
            for (const char* name : {"undoRename", "redoRename"})
                actions.at(name)->setEnabled(!isRunning && controller.validateUserInterfaceItem());
        },
        Qt::QueuedConnection);
    menu->addSeparator();
    addForText("cut", "Cu&t", QKeySequence::Cut, [] {});
    addForText("copy", "&Copy", QKeySequence::Copy, [this] { window.previewPane().copySelected(); });
    addForText("paste", "&Paste", QKeySequence::Paste, [this] { window.previewPane().pasteFiles(); });
    addForText("selectAll", "Select &All", QKeySequence::SelectAll, [] {});
    menu->addSeparator();
    add(menu, "findInList", "&Find in List…", QKeySequence::Find,
        [this] { window.previewPane().openFind(); });
    add(menu, "nextProblem", "&Next Problem", QKeySequence("F8"),
        [this] { window.previewPane().goToProblem(true); });
    add(menu, "previousProblem", "Pre&vious Problem", QKeySequence("Shift+F8"),
        [this] { window.previewPane().goToProblem(false); });
    menu->addSeparator();
    add(menu, "showPreferencesDialog", "Pr&eferences…", QKeySequence("Ctrl+,"),
        [this] { PreferencesWindow::open(&window, services); });
}

void WindowCommands::Parts::addStepsMenu() {
    QMenu* menu = addMenu("&Steps");
    ActionListCommands& commands = controller.actionListCommands();
    add(menu, "findAction", "&Find an Action…", QKeySequence("Ctrl+K"),
        [this] { window.settingsPane().findAction(); });
    add(menu, "resetToDefaults", "Reset to &Defaults", QKeySequence("Ctrl+R"),
        [&commands] { commands.resetToDefaults(); });
    menu->addSeparator();
    add(menu, "addAction", "&Add Step", QKeySequence("Ctrl+N"), [this, &commands] {
        commands.addAction();
        // From the second step on the list of steps is worth its place.
        if (!controller.globalSettings().values().shouldShowMultistepDrawer)
            controller.showMultistepDrawer();
    });
    add(menu, "removeAction", "&Remove Step", {}, [&commands] { commands.removeAction(); });
    add(menu, "clearActions", "&Keep Only This Step", {}, [&commands] { commands.clearActions(); });
    menu->addSeparator();
    add(menu, "nudgeActionUp", "Move Step &Up", QKeySequence("Ctrl+Shift+Up"),
        [&commands] { commands.nudgeActionUp(); });
    add(menu, "nudgeActionDown", "Move Step Do&wn", QKeySequence("Ctrl+Shift+Down"),
        [&commands] { commands.nudgeActionDown(); });
    const auto goBy = [this](int by) {
        CompositeRenameAction& composite = controller.compositeAction();
        composite.setCurrentActionIndex(composite.getCurrentActionIndexAsInt() + by);
    };
    add(menu, "previousStep", "&Previous Step", QKeySequence("Ctrl+PgUp"), [goBy] { goBy(-1); });
    add(menu, "nextStep", "&Next Step", QKeySequence("Ctrl+PgDown"), [goBy] { goBy(1); });
    QAction* active = add(menu, "stepActive", "Acti&ve", {}, [this] {
        controller.compositeAction().getCurrentAction().setValue(
            actions.at("stepActive")->isChecked() ? 1 : 0, "active");
    });
    active->setCheckable(true);
}

void WindowCommands::Parts::addViewMenu() {
    QMenu* menu = addMenu("&View");
    add(menu, "showMultistepDrawer", MultiStepDrawerTransformer::transformedValue(std::nullopt),
        QKeySequence("F9"), [this] { controller.showMultistepDrawer(); });
    menu->addSeparator();
    addSetting(menu, "showCurrentName", "&Current Name");
    addSetting(menu, "showPath", "F&older");
    addSetting(menu, "quickLookThumbnail", "&Thumbnails", QKeySequence("Ctrl+T"));
    QAction* invisible = add(menu, "showInvisibles", "&Invisible Characters", QKeySequence("Ctrl+I"), [this] {
        services.defaults.setObject("showInvisibles", actions.at("showInvisibles")->isChecked());
    });
    invisible->setCheckable(true);
    menu->addSeparator();
    addSetting(menu, "processFiles", "F&iles");
    addSetting(menu, "processFolders", "Fol&ders");
    addSetting(menu, "processSubfolders", "Process &Subfolders and Their Contents");
    menu->addSeparator();
    PreviewPane& pane = window.previewPane();
    add(menu, "showAllItems", "Show &All Items", QKeySequence("Ctrl+1"),
        [&pane] { pane.setShow(PreviewPane::Show::all); });
    add(menu, "showItemsToBeRenamed", "Items to &Be Renamed", QKeySequence("Ctrl+2"),
        [&pane] { pane.setShow(PreviewPane::Show::toBeRenamed); });
    add(menu, "showProblems", "&Problems", QKeySequence("Ctrl+3"),
        [&pane] { pane.setShow(PreviewPane::Show::problems); });
    menu->addSeparator();
    QAction* manual = add(menu, "manualOrder", "&Manual Order", QKeySequence("Ctrl+M"), [this] {
        controller.globalSettings().setAutomaticSorting(!actions.at("manualOrder")->isChecked());
    });
    manual->setCheckable(true);
    add(menu, "moveRowUp", "Move Row &Up", {}, [&pane] { pane.moveSelection(true); });
    add(menu, "moveRowDown", "Move Row Do&wn", {}, [&pane] { pane.moveSelection(false); });
    menu->addSeparator();
    add(menu, "fullScreen", "&Full Screen", QKeySequence("F11"),
        [this] { window.setWindowState(window.windowState() ^ Qt::WindowFullScreen); });
}

void WindowCommands::Parts::addPresetsMenu() {
    presetsMenu = addMenu("&Presets");
    presetsEnd = presetsMenu->addSeparator();
    add(presetsMenu, "createNewPresetWithCurrentSettings", "&Save as Preset…", QKeySequence("Ctrl+S"),
        [this] { PresetDialog::saveAsPreset(&window, services); });
    add(presetsMenu, "organizePresets", "&Organize Presets…", QKeySequence("Ctrl+Shift+S"),
        [this] { OrganizePresetsDialog::open(&window, services); });
    presetsMenu->addSeparator();
    add(presetsMenu, "migratePresets", "&Migrate Presets", {}, [this] { controller.migratePresets(); });
    add(presetsMenu, "migratePresetsFromFolder", "Migrate Presets from &Folder…", {},
        [this] { controller.migratePresetsFromFolder(); });
    add(presetsMenu, "migrateDroplets", "Migrate &Droplets…", {}, [this] { controller.migrateDroplet(); });
}

void WindowCommands::Parts::addHelpMenu() {
    QMenu* menu = addMenu("&Help");
    add(menu, "showHelp", "Tavrin &Help", QKeySequence::HelpContents, [this] { window.showHelp(""); });
    add(menu, "showHelpOnAction", "Help on This &Action", QKeySequence("Shift+F1"),
        [this] { window.settingsPane().showHelpOnAction(); });
    add(menu, "showMultistepRenameHelp", "&Multi-Step Renaming", {},
        [this] { window.showHelp("helpTopic6"); });
    add(menu, "showShortcuts", "&Keyboard Shortcuts", QKeySequence("Ctrl+?"),
        [this] { ShortcutsDialog::open(&window); });
    menu->addSeparator();
    add(menu, "showSnowLeopardHelp", "&File Manager Integration", {},
        [this] { window.showHelp("helpTopic57"); });
    add(menu, "contact", "&Contact Us", {}, [] { QDesktopServices::openUrl(QUrl(contactPage)); });
    add(menu, "checkForUpdates", "Check for &Updates…", {}, [this] {
        controller.checkForUpdates();
    })->setVisible(controller.updateCheck().isOn());
    add(menu, "createProfile", "Create &Error Report", {}, [this] { controller.createProfile(); });
    add(menu, "about", "A&bout Tavrin", {}, [this] {
        auto* box = new QMessageBox(QMessageBox::NoIcon, "About Tavrin",
                                    "<b>Tavrin 9</b><br>Renames many files and folders at once.",
                                    QMessageBox::Ok, &window);
        box->setInformativeText("Free software under the GNU General Public License, version 3 or later.");
        box->setIconPixmap(QApplication::windowIcon().pixmap(64));
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->open();
    });
}

WindowCommands::WindowCommands(MainWindow& window, const WindowServices& services)
    : parts(std::make_unique<Parts>(window, services)) {
    parts->addFileMenu();
    parts->addEditMenu();
    parts->addStepsMenu();
    parts->addViewMenu();
    parts->addPresetsMenu();
    parts->addHelpMenu();
    fillPresetMenu({});
    parts->feedObservation = services.defaults.observe(std::string(UpdateFeed::locationKey), [this] {
        QMetaObject::invokeMethod(&parts->window, [this] { refresh(); });
    });
}

WindowCommands::~WindowCommands() = default;

QAction* WindowCommands::command(const char* name) const {
    const auto found = parts->actions.find(name);
    if (found == parts->actions.end())
        throw std::logic_error(std::string("no command ") + name);
    return found->second;
}

void WindowCommands::fillPresetMenu(const std::vector<std::u16string>& titles) {
    for (QAction* action : parts->presetActions) {
        parts->presetsMenu->removeAction(action);
        delete action;
    }
    parts->presetActions.clear();
    const auto insert = [this](const QString& text) {
        auto* action = new QAction(text, &parts->window);
        parts->presetsMenu->insertAction(parts->presetsEnd, action);
        parts->presetActions.push_back(action);
        return action;
    };
    for (std::size_t i = 0; i < titles.size(); ++i) {
        QAction* action = insert(toQString(titles[i]).replace('&', "&&"));
        QObject::connect(action, &QAction::triggered, &parts->window,
                         [this, i] { parts->controller.applyPreset(i); });
    }
    if (ArrayIsEmptyTransformer::transformedValue(titles.size()))
        insert("No presets yet")->setEnabled(false);
}

void WindowCommands::refresh() {
    MainController& controller = parts->controller;
    const CompositeRenameAction& composite = controller.compositeAction();
    const bool areOn = controller.validateUserInterfaceItem() && !parts->isRunning;
    for (const auto& [name, action] : parts->actions)
        action->setEnabled(areOn);
    for (QAction* action : parts->presetActions)
        action->setEnabled(areOn && parts->controller.presetsManager().count() > 0);
    parts->actions.at("checkForUpdates")->setVisible(controller.updateCheck().isOn());
    if (!areOn)
        return;
    const auto enable = [this](const char* name, bool isEnabled) {
        parts->actions.at(name)->setEnabled(isEnabled);
    };
    const bool hasRows = !controller.previewControl().isPreviewEmpty();
    enable("removeFile", controller.sourceCommands().canRemove(parts->window.previewPane().selection()));
    enable("clearPreview", hasRows);
    enable("createFileList", hasRows);
    for (const char* name : {"ok", "applyAndQuit", "applyButDontQuit"})
        enable(name, controller.isRenameButtonEnabled());
    const bool isDrawerShown = controller.globalSettings().values().shouldShowMultistepDrawer != 0;
    parts->actions.at("showMultistepDrawer")
        ->setText(MultiStepDrawerTransformer::transformedValue(isDrawerShown));
    enable("showMultistepDrawer", !isDrawerShown || composite.canClose());
    for (const char* name : {"removeAction", "clearActions"})
        enable(name, MoreThanOneObjectInTableTransformer::transformedValue(composite.count()));
    parts->actions.at("stepActive")->setChecked(composite.getCurrentAction().getParamInt("active", 0) == 1);
    for (const std::string& key : parts->settings)
        parts->actions.at(key)->setChecked(isOn(controller.globalSettings(), key.c_str()));
    parts->actions.at("showInvisibles")->setChecked(parts->services.defaults.boolForKey("showInvisibles"));
    parts->actions.at("manualOrder")->setChecked(!controller.globalSettings().values().automaticSorting);
}

void WindowCommands::setRunning(bool isRunning) {
    parts->isRunning = isRunning;
    refresh();
}

void WindowCommands::enterDropletEditMode() {
    parts->actions.at("createNewPresetWithCurrentSettings")->setShortcut({});
    for (const char* name : {"createDroplet", "createFileList", "applyAndQuit", "applyButDontQuit"})
        parts->actions.at(name)->setVisible(false);
    QAction* save = parts->actions.at("ok");
    save->setText("&Save");
    save->setShortcuts({QKeySequence::Save, QKeySequence("Ctrl+Return")});
}

} // namespace tavrin
