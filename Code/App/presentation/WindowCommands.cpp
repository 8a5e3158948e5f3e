#include "presentation/WindowCommands.h"

#include "actions/CompositeRenameAction.h"
#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "documents/UpdateFeed.h"
#include "platform/propertylists/UserDefaults.h"
#include "presentation/QtText.h"
#include "presentation/dialogs/OrganizePresetsDialog.h"
#include "presentation/dialogs/PreferencesWindow.h"
#include "presentation/dialogs/PresetDialog.h"
#include "presentation/dialogs/ShortcutsDialog.h"
#include "presentation/history/RunWords.h"
#include "presentation/settings/ParameterBinding.h"
#include "shell/MainController.h"
#include "support/text/Text.h"
#include "support/values/ValueTransformers.h"

#include <QAbstractSpinBox>
#include <QAction>
#include <QApplication>
#include <QDesktopServices>
#include <QIcon>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMetaMethod>
#include <QPointer>
#include <QUrl>
#include <algorithm>
#include <array>

namespace tavrin {

namespace {

/// Of a folder's name in an entry, in characters.
constexpr qsizetype longestFolder = 30;
constexpr const char* contactPage = "https://calderwick.net/tavrin/contact";

/// Performs "undo", "cut" or the like in the field of text that has the focus; false where none has.
bool performOnText(const char* slot) {
    QWidget* field = QApplication::focusWidget();
    if (qobject_cast<QAbstractSpinBox*>(field))
        field = field->findChild<QLineEdit*>();
    if (!field || field->metaObject()->indexOfSlot(QByteArray(slot) + "()") < 0)
        return false;
    return QMetaObject::invokeMethod(field, slot);
}

/// Whether anything is on the list, be it in sight or not.
bool hasSourceItems(MainController& controller) {
    StoreContext& context = controller.managedObjectContext();
    const std::lock_guard lock(context.mutex());
    return context.sourceItemCount() > 0;
}

/// "Undo Rename (487 Names, “Lofoten”)".
QString withDetails(const QString& command, const UndoCommands::Next& next) {
    const QString count = WindowCommands::tr("1 Name||%Ln Names", nullptr, static_cast<int>(next.count));
    const QString place = RunWords::shortened(RunWords::place(next.folder, next.folderCount), longestFolder);
    const QString quoted = next.folderCount > 1 ? place : WindowCommands::tr("“%1”").arg(place);
    //: An entry of a menu, and how many names it is about, or where they are.
    const QString one = WindowCommands::tr("%1 (%2)");
    if (next.folderCount == 0)
        return next.count == 0 ? command : one.arg(command, count);
    //: The same with both.
    return next.count == 0 ? one.arg(command, quoted)
                           : WindowCommands::tr("%1 (%2, %3)").arg(command, count, quoted);
}

} // namespace

WindowCommands::WindowCommands(QMainWindow& mainWindow, const WindowServices& shared)
    : window(mainWindow), services(shared) {
    addFileMenu();
    addEditMenu();
    addStepsMenu();
    addViewMenu();
    addPresetsMenu();
    addHelpMenu();
    fillPresetMenu({});
    feedObservation = services.defaults.observe(std::string(UpdateFeed::locationKey), [this] {
        QMetaObject::invokeMethod(
            this, [this] { checkForUpdates->setVisible(services.controller.updateCheck().isOn()); });
    });
}

WindowCommands::~WindowCommands() = default;

// --- Making them ---

QMenu* WindowCommands::addMenu(const QString& title) { return window.menuBar()->addMenu(title); }

QAction* WindowCommands::add(QMenu* menu, const char* name, const QString& text, const QKeySequence& keys) {
    auto* action = new QAction(text, &window);
    action->setObjectName(name);
    action->setShortcut(keys);
    action->setMenuRole(QAction::NoRole);
    menu->addAction(action);
    all.push_back(action);
    return action;
}

template <typename Effect>
QAction* WindowCommands::add(QMenu* menu, const char* name, const QString& text, const QKeySequence& keys,
                             Effect effect) {
    QAction* action = add(menu, name, text, keys);
    connect(action, &QAction::triggered, this, std::move(effect));
    return action;
}

/// Fields of text take these keys themselves; elsewhere copying and pasting is about the list.
QAction* WindowCommands::addForText(QMenu* menu, const char* slot, const QString& text,
                                    QKeySequence::StandardKey keys, void (WindowCommands::*otherwise)()) {
    return add(menu, slot, text, keys, [this, slot, otherwise] {
        if (!performOnText(slot) && otherwise)
            (this->*otherwise)();
    });
}

/// A tick that stands for a global setting of 1 or 0.
QAction* WindowCommands::addSetting(QMenu* menu, const char* key, const QString& text,
                                    const QKeySequence& keys) {
    QAction* action = add(menu, key, text, keys);
    action->setCheckable(true);
    settings.push_back(std::make_unique<ParameterBinding>(
        services.controller.globalSettings(), key,
        [action](const auto& value) { action->setChecked(value && intValue(*value) != 0); }));
    connect(action, &QAction::triggered, this,
            [binding = settings.back().get()](bool isOn) { binding->write(isOn ? 1 : 0); });
    return action;
}

void WindowCommands::addFileMenu() {
    MainController& controller = services.controller;
    QMenu* menu = addMenu(tr("&File"));
    addFiles = add(menu, "addFiles", tr("&Add Files…"), QKeySequence::Open);
    addFolder = add(menu, "addFolder", tr("Add F&older…"), QKeySequence("Ctrl+Shift+O"));
    menu->addSeparator();
    removeFile = add(menu, "removeFile", tr("&Remove from List"));
    clearPreview = add(menu, "clearPreview", tr("C&lear List"), QKeySequence("Ctrl+Shift+Del"),
                       [&controller] { controller.clearPreview(); });
    add(menu, "reloadPreview", tr("Re&load List"), QKeySequence("F5"),
        [&controller] { controller.rereadList(); });
    menu->addSeparator();
    openFile = add(menu, "openFile", tr("&Open"), QKeySequence("Ctrl+Shift+Return"));
    revealFile = add(menu, "revealFile", tr("Show in File &Manager"), QKeySequence("Ctrl+Shift+F"));
    menu->addSeparator();
    createFileList = add(menu, "createFileList", tr("Save L&ist…"), QKeySequence("Ctrl+E"),
                         [&controller] { controller.createFileList(); });
    createDroplet = add(menu, "createDroplet", tr("Create &Droplet…"), QKeySequence("Ctrl+D"),
                        [&controller] { controller.createDroplet(); });
    menu->addSeparator();
    ok = add(menu, "ok", tr("Re&name"), QKeySequence("Ctrl+Return"), [this, &controller] {
        emit runWanted();
        controller.ok();
    });
    applyAndQuit = add(menu, "applyAndQuit", tr("Rename and &Quit"), QKeySequence("Ctrl+Alt+Return"),
                       [this, &controller] {
                           emit runWanted();
                           controller.applyAndQuit();
                       });
    applyButDontQuit = add(menu, "applyButDontQuit", tr("Rename, Don’t Q&uit"), {}, [this, &controller] {
        emit runWanted();
        controller.applyButDontQuit();
    });
    menu->addSeparator();
    add(menu, "cancel", tr("&Quit"), QKeySequence("Ctrl+Q"), [&controller] { controller.cancel(); });
}

void WindowCommands::addEditMenu() {
    QMenu* menu = addMenu(tr("&Edit"));
    addForText(menu, "undo", tr("&Undo"), QKeySequence::Undo, &WindowCommands::undoRequested);
    addForText(menu, "redo", tr("&Redo"), QKeySequence::Redo, &WindowCommands::redoRequested);
    menu->addSeparator();
    addUndos(menu);
    menu->addSeparator();
    addForText(menu, "cut", tr("Cu&t"), QKeySequence::Cut);
    copy = addForText(menu, "copy", tr("&Copy"), QKeySequence::Copy, &WindowCommands::rowsCopied);
    addForText(menu, "paste", tr("&Paste"), QKeySequence::Paste, &WindowCommands::filesPasted);
    addForText(menu, "selectAll", tr("Select &All"), QKeySequence::SelectAll);
    menu->addSeparator();
    editNewName = add(menu, "editNewName", tr("Edit Ne&w Name"), QKeySequence("F2"));
    unpinNames = add(menu, "unpinNames", tr("Unpin Na&me"), QKeySequence("Shift+F2"));
    namesAsText = add(menu, "namesAsText", tr("Names as Te&xt"), QKeySequence("Ctrl+Shift+E"));
    namesAsText->setCheckable(true);
    menu->setToolTipsVisible(true); // that of names as text says why it is off
    menu->addSeparator();
    findInList = add(menu, "findInList", tr("&Find in List…"), QKeySequence::Find);
    findNext = add(menu, "findNext", tr("Find Ne&xt"), QKeySequence("F3"));
    findPrevious = add(menu, "findPrevious", tr("Find Previou&s"), QKeySequence("Shift+F3"));
    nextProblem = add(menu, "nextProblem", tr("&Next Problem"), QKeySequence("F8"));
    previousProblem = add(menu, "previousProblem", tr("Pre&vious Problem"), QKeySequence("Shift+F8"));
    menu->addSeparator();
    add(menu, "showPreferencesDialog", tr("Pr&eferences…"), QKeySequence("Ctrl+,"),
        [this] { PreferencesWindow::open(&window, services); });
}

/// What is next may have come from another program, so it is looked up when the menu opens; the shortcuts
/// work whatever it said last.
void WindowCommands::addUndos(QMenu* menu) {
    UndoCommands& undos = services.controller.undoCommands();
    QAction* undoRename =
        add(menu, "undoRename", tr("Undo Rename"), QKeySequence("Ctrl+Alt+Z"), [&undos] { undos.undoRun(); });
    QAction* redoRename = add(menu, "redoRename", tr("Redo Rename"), QKeySequence("Ctrl+Alt+Shift+Z"),
                              [&undos] { undos.redoRun(); });
    showHistory = add(menu, "showHistory", tr("&History…"), QKeySequence("Ctrl+Shift+H"));
    connect(menu, &QMenu::aboutToShow, this, [=, this] {
        describe(*undoRename, RunKind::undo);
        describe(*redoRename, RunKind::redo);
    });
    connect(
        menu, &QMenu::aboutToHide, this,
        [=, this] {
            for (QAction* action : {undoRename, redoRename})
                action->setEnabled(!isRunning && services.controller.validateUserInterfaceItem());
        },
        Qt::QueuedConnection);
}

/// Gives a command the words for what it would do now, or turns it off where that is nothing.
void WindowCommands::describe(QAction& command, RunKind kind) {
    const auto next = services.controller.undoCommands().next(
        kind, [this, action = QPointer(&command), kind, alive = QPointer(this)] {
            if (alive && action)
                describe(*action, kind);
        });
    QString text = kind == RunKind::undo ? tr("Undo Rename") : tr("Redo Rename");
    if (next && next->finishes)
        text = next->isOfUndo ? tr("Finish Undo") : tr("Finish Rename");
    if (next)
        text = withDetails(text, *next);
    command.setText(text.replace('&', "&&"));
    command.setEnabled(next && !isRunning && services.controller.validateUserInterfaceItem());
}

void WindowCommands::addStepsMenu() {
    QMenu* menu = addMenu(tr("&Steps"));
    ActionListCommands& commands = services.controller.actionListCommands();
    findAction = add(menu, "findAction", tr("&Find an Action…"), QKeySequence("Ctrl+K"));
    resetToDefaults = add(menu, "resetToDefaults", tr("Reset to &Defaults"), QKeySequence("Ctrl+R"),
                          [&commands] { commands.resetToDefaults(); });
    menu->addSeparator();
    addAction = add(menu, "addAction", tr("&Add Step"), QKeySequence("Ctrl+N"), [this, &commands] {
        commands.addAction();
        // From the second step on the list of steps is worth its place.
        if (!services.controller.globalSettings().values().shouldShowMultistepDrawer)
            services.controller.showMultistepDrawer();
    });
    removeAction =
        add(menu, "removeAction", tr("&Remove Step"), {}, [&commands] { commands.removeAction(); });
    clearActions =
        add(menu, "clearActions", tr("&Keep Only This Step"), {}, [&commands] { commands.clearActions(); });
    menu->addSeparator();
    nudgeActionUp = add(menu, "nudgeActionUp", tr("Move Step &Up"), QKeySequence("Ctrl+Shift+Up"),
                        [&commands] { commands.nudgeActionUp(); });
    nudgeActionDown = add(menu, "nudgeActionDown", tr("Move Step Do&wn"), QKeySequence("Ctrl+Shift+Down"),
                          [&commands] { commands.nudgeActionDown(); });
    CompositeRenameAction& chain = services.controller.compositeAction();
    const auto goBy = [&chain](int by) {
        chain.setCurrentActionIndex(chain.getCurrentActionIndexAsInt() + by);
    };
    add(menu, "previousStep", tr("&Previous Step"), QKeySequence("Ctrl+PgUp"), [goBy] { goBy(-1); });
    add(menu, "nextStep", tr("&Next Step"), QKeySequence("Ctrl+PgDown"), [goBy] { goBy(1); });
    stepActive = add(menu, "stepActive", tr("Acti&ve"), {}, [&chain](bool isActive) {
        chain.getCurrentAction().setValue(isActive ? 1 : 0, "active");
    });
    stepActive->setCheckable(true);
    menu->addSeparator();
    copyAsCommand = add(menu, "copyAsCommand", tr("Copy as &Command"), QKeySequence("Ctrl+Shift+C"));
    copySteps = add(menu, "copySteps", tr("Copy Steps as &Text"));
}

void WindowCommands::addViewMenu() {
    MainController& controller = services.controller;
    QMenu* menu = addMenu(tr("&View"));
    showMultistepDrawer =
        add(menu, "showMultistepDrawer", MultiStepDrawerTransformer::transformedValue(std::nullopt),
            QKeySequence("F9"), [&controller] { controller.showMultistepDrawer(); });
    menu->addSeparator();
    addSetting(menu, "showCurrentName", tr("&Current Name"));
    showPath = add(menu, "showPath", tr("F&older"), {},
                   [&controller](bool isShown) { controller.previewControl().showFolderColumn(isShown); });
    showPath->setCheckable(true);
    showTickBoxes = add(menu, "showTickBoxes", tr("Tick &Boxes"), {},
                        [this](bool areShown) { services.defaults.setObject("showTickBoxes", areShown); });
    showTickBoxes->setCheckable(true);
    addSetting(menu, "quickLookThumbnail", tr("&Thumbnails"), QKeySequence("Ctrl+T"));
    showInvisibles = add(menu, "showInvisibles", tr("&Invisible Characters"), QKeySequence("Ctrl+I"),
                         [this](bool areShown) { services.defaults.setObject("showInvisibles", areShown); });
    showInvisibles->setCheckable(true);
    showRecipeLine = add(menu, "showRecipeLine", tr("&Recipe Line"), {},
                         [this](bool isShown) { services.defaults.setObject("showRecipeLine", isShown); });
    showRecipeLine->setCheckable(true);
    showRecipeLine->setChecked(services.defaults.boolForKey("showRecipeLine"));
    menu->addSeparator();
    processFiles = addSetting(menu, "processFiles", tr("F&iles"));
    processFolders = addSetting(menu, "processFolders", tr("Fol&ders"));
    processSubfolders = addSetting(menu, "processSubfolders", tr("Process &Subfolders and Their Contents"));
    menu->addSeparator();
    showAllItems = add(menu, "showAllItems", tr("Show &All Items"), QKeySequence("Ctrl+1"));
    showItemsToBeRenamed =
        add(menu, "showItemsToBeRenamed", tr("Items to &Be Renamed"), QKeySequence("Ctrl+2"));
    showProblems = add(menu, "showProblems", tr("&Problems"), QKeySequence("Ctrl+3"));
    showNotRenamed = add(menu, "showNotRenamed", tr("Not Re&named"), QKeySequence("Ctrl+4"));
    all.pop_back(); // the list knows when it is on
    showNotRenamed->setEnabled(false);
    menu->addSeparator();
    manualOrder =
        add(menu, "manualOrder", tr("&Manual Order"), QKeySequence("Ctrl+M"),
            [&controller](bool isManual) { controller.globalSettings().setAutomaticSorting(!isManual); });
    manualOrder->setCheckable(true);
    moveRowUp = add(menu, "moveRowUp", tr("Move Row &Up"));
    moveRowDown = add(menu, "moveRowDown", tr("Move Row Do&wn"));
    menu->addSeparator();
    add(menu, "fullScreen", tr("&Full Screen"), QKeySequence("F11"),
        [this] { window.setWindowState(window.windowState() ^ Qt::WindowFullScreen); });
}

void WindowCommands::addPresetsMenu() {
    MainController& controller = services.controller;
    presetsMenu = addMenu(tr("&Presets"));
    presetsEnd = presetsMenu->addSeparator();
    saveAsPreset = add(presetsMenu, "createNewPresetWithCurrentSettings", tr("&Save as Preset…"),
                       QKeySequence("Ctrl+S"), [this] { PresetDialog::saveAsPreset(&window, services); });
    add(presetsMenu, "organizePresets", tr("&Organize Presets…"), QKeySequence("Ctrl+Shift+S"),
        [this] { OrganizePresetsDialog::open(&window, services); });
    openRecipe = add(presetsMenu, "openRecipe", tr("Open &Recipe…"));
    presetsMenu->addSeparator();
    add(presetsMenu, "migratePresets", tr("&Migrate Presets"), {},
        [&controller] { controller.migratePresets(); });
    add(presetsMenu, "migratePresetsFromFolder", tr("Migrate Presets from &Folder…"), {},
        [&controller] { controller.migratePresetsFromFolder(); });
    add(presetsMenu, "migrateDroplets", tr("Migrate &Droplets…"), {},
        [&controller] { controller.migrateDroplet(); });
}

void WindowCommands::addHelpMenu() {
    MainController& controller = services.controller;
    QMenu* menu = addMenu(tr("&Help"));
    const auto opens = [&controller](const char* anchor) {
        return [&controller, anchor] { controller.showHelpAnchor(anchor); };
    };
    add(menu, "showHelp", tr("Tavrin &Help"), QKeySequence::HelpContents, opens(""));
    showHelpOnAction = add(menu, "showHelpOnAction", tr("Help on This &Action"), QKeySequence("Shift+F1"));
    add(menu, "showMultistepRenameHelp", tr("&Multi-Step Renaming"), {}, opens("helpTopic6"));
    add(menu, "showShortcuts", tr("&Keyboard Shortcuts"), QKeySequence("Ctrl+?"),
        [this] { ShortcutsDialog::open(&window); });
    menu->addSeparator();
    add(menu, "showSnowLeopardHelp", tr("&File Manager Integration"), {}, opens("helpTopic57"));
    add(menu, "contact", tr("&Contact Us"), {}, [] { QDesktopServices::openUrl(QUrl(contactPage)); });
    checkForUpdates = add(menu, "checkForUpdates", tr("Check for &Updates…"), {},
                          [&controller] { controller.checkForUpdates(); });
    checkForUpdates->setVisible(controller.updateCheck().isOn());
    add(menu, "createProfile", tr("Create &Error Report"), {}, [&controller] { controller.createProfile(); });
    add(menu, "about", tr("A&bout Tavrin"), {}, [this] { tellAbout(); });
}

void WindowCommands::tellAbout() {
    auto* box = new QMessageBox(QMessageBox::NoIcon, tr("About Tavrin"),
                                tr("<b>Tavrin 9</b><br>Renames many files and folders at once."),
                                QMessageBox::Ok, &window);
    box->setInformativeText(tr("Free software under the GNU General Public License, version 3 or later."));
    box->setIconPixmap(QApplication::windowIcon().pixmap(64));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

// --- What is on ---

void WindowCommands::fillPresetMenu(const std::vector<std::u16string>& titles) {
    qDeleteAll(presetActions);
    presetActions.clear();
    const auto insert = [this](const QString& text) {
        auto* action = new QAction(text, &window);
        presetsMenu->insertAction(presetsEnd, action);
        presetActions.push_back(action);
        return action;
    };
    for (std::size_t i = 0; i < titles.size(); ++i)
        connect(insert(toQString(titles[i]).replace('&', "&&")), &QAction::triggered, this,
                [this, i] { services.controller.applyPreset(i); });
    if (ArrayIsEmptyTransformer::transformedValue(titles.size()))
        insert(tr("No presets yet"))->setEnabled(false);
}

void WindowCommands::refresh(const std::vector<RowId>& selection) {
    MainController& controller = services.controller;
    const CompositeRenameAction& chain = controller.compositeAction();
    const bool areOn = controller.validateUserInterfaceItem() && !isRunning;
    const bool hasItems = hasSourceItems(controller);
    const bool canRename = controller.isRenameButtonEnabled();
    const bool hasSeveralSteps = MoreThanOneObjectInTableTransformer::transformedValue(chain.count());
    const bool isDrawerShown = controller.globalSettings().values().shouldShowMultistepDrawer != 0;
    const auto isOn = [&](const QAction* action) {
        if (action == removeFile)
            return controller.sourceCommands().canRemove(selection);
        if (action == clearPreview || action == createFileList)
            return hasItems;
        if (action == namesAsText)
            return areNamesText;
        if (action == ok || action == applyAndQuit || action == applyButDontQuit)
            return canRename;
        if (action == showMultistepDrawer)
            return !isDrawerShown || chain.canClose();
        if (action == removeAction || action == clearActions || action == nudgeActionUp ||
            action == nudgeActionDown)
            return hasSeveralSteps;
        return true;
    };
    // What only looks at the list can be done during a run, too.
    const std::array looking{copy, findInList, showAllItems, showItemsToBeRenamed, showProblems};
    for (QAction* action : all)
        action->setEnabled((areOn || std::ranges::find(looking, action) != looking.end()) && isOn(action));
    for (QAction* action : presetActions)
        action->setEnabled(areOn && controller.presetsManager().count() > 0);
    if (!areOn)
        return;
    showMultistepDrawer->setText(MultiStepDrawerTransformer::transformedValue(isDrawerShown));
    stepActive->setChecked(chain.getCurrentAction().getParamInt("active", 0) == 1);
    showPath->setChecked(controller.previewControl().isFolderColumnShown());
    showTickBoxes->setChecked(services.defaults.boolForKey("showTickBoxes"));
    showInvisibles->setChecked(services.defaults.boolForKey("showInvisibles"));
    manualOrder->setChecked(!controller.globalSettings().values().automaticSorting);
}

void WindowCommands::allowText(bool areAllowed, const QString& reason) {
    areNamesText = areAllowed;
    namesAsText->setEnabled(areAllowed && !isRunning && services.controller.validateUserInterfaceItem());
    namesAsText->setToolTip(reason);
}

void WindowCommands::enterDropletEditMode() {
    saveAsPreset->setShortcut({});
    for (QAction* action : {createDroplet, createFileList, applyAndQuit, applyButDontQuit, editNewName,
                            unpinNames, namesAsText, showTickBoxes})
        action->setVisible(false);
    ok->setText(tr("&Save"));
    ok->setShortcuts({QKeySequence::Save, QKeySequence("Ctrl+Return")});
}

} // namespace tavrin
