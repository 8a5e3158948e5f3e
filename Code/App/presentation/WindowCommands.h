#pragma once

#include "presentation/WindowServices.h"

#include <memory>
#include <string>
#include <vector>

class QAction;
class QMenu;

namespace tavrin {

class MainWindow;

/// The commands of the window: menus, shortcuts, and which are on at the moment. Each action bears as object
/// name the operation that it stands for.
class WindowCommands {
  public:
    WindowCommands(MainWindow& window, const WindowServices& services);
    ~WindowCommands();

    /// The command of an operation; it must exist.
    [[nodiscard]] QAction* command(const char* name) const;
    void fillPresetMenu(const std::vector<std::u16string>& titles);
    /// Brings what is on and what is ticked in line with the application.
    void refresh();
    void setRunning(bool isRunning);
    void enterDropletEditMode();

  private:
    struct Parts;
    std::unique_ptr<Parts> parts;
};

} // namespace tavrin
