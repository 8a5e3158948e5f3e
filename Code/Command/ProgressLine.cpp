#include "ProgressLine.h"

#include "Terminal.h"
#include "platform/processes/RunLoop.h"

namespace tavrin {

namespace {

constexpr double secondsUntilShown = 1.0;

} // namespace

ProgressLine::ProgressLine(ProgressInfo& info, RunLoop& mainLoop, Terminal& shownOn, bool isShown)
    : progress(info), loop(mainLoop), terminal(shownOn), start(mainLoop.now()) {
    if (isShown)
        progress.setObserver(this);
}

ProgressLine::~ProgressLine() {
    progress.setObserver(nullptr);
    terminal.clearProgress();
}

void ProgressLine::progressChanged(std::string_view) {
    // A total may be announced by the worker; the next tick shows it.
    if (!loop.isCurrent() || progress.isDone() || loop.now() - start < secondsUntilShown)
        return;
    std::string line = progress.stageText();
    if (const std::string items = progress.itemText(); !items.empty())
        line += " " + items;
    terminal.showProgress(line);
}

} // namespace tavrin
