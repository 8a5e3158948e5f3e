#pragma once

#include "engine/pipeline/ProgressInfo.h"

#include <string_view>

namespace tavrin {

class RunLoop;
class Terminal;

/// Shows the progress of a run on the terminal for as long as it lives, once the run has taken a second.
class ProgressLine : public ProgressObserver {
  public:
    ProgressLine(ProgressInfo& info, RunLoop& mainLoop, Terminal& shownOn, bool isShown);
    ~ProgressLine() override;
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    void progressChanged(std::string_view key) override;

  private:
    ProgressInfo& progress;
    RunLoop& loop;
    Terminal& terminal;
    double start;
};

} // namespace tavrin
