#pragma once

#include "shell/asking/FrontEnd.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

class QWidget;

namespace tavrin {

/// Panels that ask where something is. Each returns at once and gives its answer once; one that is closed
/// with its window drops the answer uncalled. Paths in bytes.
struct LocateDialogs {
    /// Several at once: launchers, and the bundle folders, which other panels would only open.
    static void askForDroplets(QWidget* parent, const LocatePanel& panel,
                               std::function<void(std::optional<std::vector<std::string>>)> answer);
    static void askForFolder(QWidget* parent, const LocatePanel& panel,
                             std::function<void(std::optional<std::string>)> answer);
};

} // namespace tavrin
