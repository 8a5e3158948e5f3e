#include "presentation/WindowSpeech.h"

#include "presentation/QtText.h"
#include "presentation/Spoken.h"
#include "shell/MainController.h"

#include <algorithm>
#include <chrono>

namespace tavrin {

namespace {

constexpr std::chrono::seconds restAfterEdits(1);
constexpr std::chrono::seconds tickLength(1);
constexpr qint64 millisecondsBetweenReports = 10000;

QString timeLeftText(qint64 seconds) {
    constexpr qint64 minute = 60;
    if (seconds < 2 * minute)
        return WindowSpeech::tr("about 1 second left||about %Ln seconds left", nullptr,
                                static_cast<int>(std::max<qint64>(1, seconds)));
    return WindowSpeech::tr("about 1 minute left||about %Ln minutes left", nullptr,
                            static_cast<int>(seconds / minute));
}

} // namespace

WindowSpeech::WindowSpeech(const WindowServices& shared, std::function<std::size_t()> problemCount)
    : services(shared), problems(std::move(problemCount)) {
    rest.setSingleShot(true);
    rest.setInterval(restAfterEdits);
    tick.setInterval(tickLength);
    connect(&rest, &QTimer::timeout, this, &WindowSpeech::tellPreview);
    connect(&tick, &QTimer::timeout, this, &WindowSpeech::tellRun);
}

void WindowSpeech::previewChanged(bool isDue) {
    rest.stop();
    if (isDue)
        return;
    const std::u16string recipe = services.controller.recipeCommands().line();
    if (!std::exchange(hasPreview, true))
        toldRecipe = recipe;
    else if (recipe != toldRecipe)
        rest.start();
}

void WindowSpeech::tellPreview() {
    toldRecipe = services.controller.recipeCommands().line();
    StoreContext& context = services.controller.managedObjectContext();
    std::int32_t total, changing;
    {
        const std::lock_guard lock(context.mutex());
        total = context.engineControl().totalNumberOfFiles;
        changing = context.engineControl().numberOfFilesThatNeedRenaming;
    }
    if (total == 0)
        return;
    const std::size_t count = problems();
    const QString text = count == 0   ? tr("%L1 out of %L2 items need renaming.")
                         : count == 1 ? tr("%L1 out of %L2 items need renaming, 1 problem.")
                                      : tr("%L1 out of %L2 items need renaming, %L3 problems.");
    Spoken::say(count > 1 ? text.arg(changing).arg(total).arg(count) : text.arg(changing).arg(total));
}

void WindowSpeech::runChanged(bool isRunning, std::size_t items) {
    rest.stop();
    if (!isRunning) {
        tick.stop();
        return;
    }
    if (tick.isActive())
        return;
    isFailureTold = false;
    lastTold = 0;
    runTime.start();
    tick.start();
    if (items > 0)
        Spoken::say(tr("Renaming 1 item||Renaming %Ln items", nullptr, static_cast<int>(items)));
}

QString WindowSpeech::progressText(int done, int total, qint64 milliseconds) {
    const int percent = static_cast<int>(100LL * done / std::max(1, total));
    if (done == 0)
        return tr("%L1 percent").arg(percent);
    //: %1 is a number, %2 is "about 15 seconds left" or the like.
    return tr("%L1 percent, %2").arg(percent).arg(timeLeftText(milliseconds * (total - done) / done / 1000));
}

void WindowSpeech::tellRun() {
    if (!isFailureTold && services.controller.renameEngine().runOutcomes().failedRows() > 0) {
        isFailureTold = true;
        Spoken::say(tr("An item was not renamed."));
        return;
    }
    const ProgressInfo& progress = services.controller.progressInfo();
    if (progress.isIndeterminate() || runTime.elapsed() - lastTold < millisecondsBetweenReports)
        return;
    lastTold = runTime.elapsed();
    Spoken::say(progressText(progress.currentItemNumber(), progress.numberOfItems(), runTime.elapsed()));
}

} // namespace tavrin
