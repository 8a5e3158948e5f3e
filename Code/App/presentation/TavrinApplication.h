#pragma once

#include "actions/ActionList.h"
#include "platform/desktop/SystemLog.h"
#include "platform/propertylists/UserDefaults.h"
#include "presentation/EnglishPlurals.h"
#include "presentation/QtFrontEnd.h"
#include "presentation/QtRunLoop.h"

#include <QTimer>
#include <memory>
#include <string>
#include <vector>

namespace tavrin {

class MainController;
class MainWindow;
class SessionEnd;

/// The program with its window: makes its parts, starts them, and ends them in order. Made after the
/// QApplication, on the main thread.
class TavrinApplication {
  public:
    struct Options {
        /// Where the user defaults are kept; empty keeps them in memory.
        std::string defaultsPath = UserDefaults::defaultPath();
        /// Where presets and the store lie; empty takes the user's folder.
        std::string dataFolder;
    };

    /// Throws std::runtime_error where the menus cannot be read.
    explicit TavrinApplication(Options options);
    ~TavrinApplication();
    TavrinApplication(const TavrinApplication&) = delete;
    TavrinApplication& operator=(const TavrinApplication&) = delete;

    /// Makes the start that of a droplet with this record, in this process alone. Before start().
    void setDroplet(PropertyDictionary record);
    /// Brings the window up and adds these paths (absolute, in bytes).
    void start(const std::vector<std::string>& paths);
    /// Adds paths that came later, and brings the window to the front. During a run they wait for its end.
    void open(const std::vector<std::string>& paths);

    [[nodiscard]] MainController& controller() { return *mainController; }
    [[nodiscard]] MainWindow& window() { return *mainWindow; }
    [[nodiscard]] QtRunLoop& runLoop() { return loop; }

  private:
    void saveState();
    void endNow();
    void addWaitingPaths();

    EnglishPlurals plurals;
    QtRunLoop loop;
    SystemLog systemLog;
    UserDefaults defaults;
    ActionList actionList;
    QtFrontEnd frontEnd;
    std::unique_ptr<MainController> mainController;
    std::unique_ptr<MainWindow> mainWindow;
    std::unique_ptr<SessionEnd> sessionEnd;
    std::vector<std::string> waitingPaths;
    QTimer waiting;
    QTimer logTimer;
};

} // namespace tavrin
