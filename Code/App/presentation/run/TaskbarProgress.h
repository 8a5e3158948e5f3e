#pragma once

#include <optional>

namespace tavrin {

/// How far a run is, on the button of the program in task bars that listen for it on the session bus
/// (com.canonical.Unity.LauncherEntry). Without a bus nothing is done. Main thread.
class TaskbarProgress {
  public:
    /// Absent: none goes on, or it is not known how far it is.
    void show(std::optional<int> newPercent);

  private:
    std::optional<int> percent;
};

} // namespace tavrin
