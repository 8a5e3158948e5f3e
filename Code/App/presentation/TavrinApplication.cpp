#include "presentation/TavrinApplication.h"

#include "documents/DropletHandOver.h"
#include "presentation/MainWindow.h"
#include "presentation/SessionEnd.h"
#include "shell/MainController.h"

#include <fmt/format.h>

#include <chrono>
#include <cstdio>
#include <stdexcept>
#include <utility>

namespace tavrin {

namespace {

constexpr int runWasStopped = 3;                           // exit status, as that of the terminal command
constexpr std::chrono::milliseconds betweenQuestions(200); // whether the run has ended
constexpr std::chrono::seconds longestInLog(1);            // that a line waits for others, all being quiet

MainController::Options controllerOptions(const TavrinApplication::Options& options) {
    MainController::Options result = MainController::Options::standard();
    if (options.dataFolder.empty())
        return result;
    result.store.dataFolder = options.dataFolder;
    result.localPresetsFolder = options.dataFolder + "/Presets";
    result.history.folder = options.dataFolder + "/Runs";
    result.globalPresetsFolder = options.dataFolder + "/Shared Presets";
    return result;
}

} // namespace

TavrinApplication::TavrinApplication(Options options)
    : defaults(options.defaultsPath.empty() ? UserDefaults() : UserDefaults(options.defaultsPath)) {
    QCoreApplication::installTranslator(&plurals);
    SystemLog::setSharedInstance(&systemLog);
    if (systemLog.isActive()) {
        setDebugLogSink(&systemLog);
        QObject::connect(&logTimer, &QTimer::timeout, &logTimer, [this] { systemLog.flush(); });
        logTimer.start(longestInLog);
    }
    UserDefaults::setSharedInstance(&defaults);
    ActionList::setSharedActionList(&actionList);
    actionList.setRunLoop(&loop);
    mainController = std::make_unique<MainController>(
        MainController::Environment{frontEnd, loop, defaults, actionList}, controllerOptions(options));
    mainWindow = std::make_unique<MainWindow>(WindowServices{*mainController, actionList, defaults});
    frontEnd.setWindow(mainWindow.get());
    QObject::connect(&waiting, &QTimer::timeout, &waiting, [this] {
        if (mainController->validateUserInterfaceItem() && !mainController->renameEngine().isBusy())
            addWaitingPaths();
    });
    sessionEnd = std::make_unique<SessionEnd>();
    QObject::connect(sessionEnd.get(), &SessionEnd::mayEnd, mainWindow.get(), [this] { saveState(); });
    QObject::connect(sessionEnd.get(), &SessionEnd::ends, mainWindow.get(), [this] { endNow(); });
}

TavrinApplication::~TavrinApplication() {
    sessionEnd.reset();
    // First the threads that wait for an answer are freed, then what they work with goes.
    frontEnd.setWindow(nullptr);
    mainWindow.reset();
    loop.close();
    mainController.reset();
    ActionList::setSharedActionList(nullptr);
    UserDefaults::setSharedInstance(nullptr);
    setDebugLogSink(nullptr);
    SystemLog::setSharedInstance(nullptr);
}

void TavrinApplication::saveState() { mainController->applicationShouldTerminate(); }

/// A run ends after the item in hand, and a question counts as answered with stop.
void TavrinApplication::endNow() {
    saveState();
    const auto tellAndEnd = [this](const std::string& report) {
        std::fputs(fmt::format("tavrin: {}\n", report).c_str(), stderr);
        frontEnd.terminateAtOnce(runWasStopped);
    };
    if (!mainController->confirmationFlow().stopRun(tellAndEnd))
        frontEnd.terminateAtOnce();
}

void TavrinApplication::setDroplet(PropertyDictionary record) {
    defaults.setProcessObject(DropletHandOver::recordKey, std::move(record));
}

void TavrinApplication::start(const std::vector<std::string>& paths) {
    mainController->applicationDidFinishLaunching();
    if (!paths.empty())
        mainController->applicationOpenFiles(paths);
}

void TavrinApplication::open(const std::vector<std::string>& paths) {
    frontEnd.showWindow();
    if (paths.empty())
        return;
    if (mainController->validateUserInterfaceItem() && !waiting.isActive()) {
        mainController->applicationOpenFiles(paths);
        return;
    }
    waitingPaths.insert(waitingPaths.end(), paths.begin(), paths.end());
    waiting.start(betweenQuestions);
}

/// At the end of a run its list is emptied, so what is added must come behind that.
void TavrinApplication::addWaitingPaths() {
    waiting.stop();
    mainController->applicationOpenFiles(std::exchange(waitingPaths, {}));
}

} // namespace tavrin
