#include "shell/preview/LongRunCheck.h"

#include "engine/pipeline/ProgressInfo.h"
#include "shell/asking/FrontEnd.h"

namespace tavrin {

void LongRunCheck::checkUpOnLongProcessingTimer() {
    longProcessingCheckTimer = services.runLoop.startTimer(std::chrono::seconds(1), false,
                                                           [this] { checkUpOnLongProcessingTimer(); });
    if (services.progress.isLong())
        services.frontEnd.selectPreviewTab(PreviewTab::progressBar);
}

} // namespace tavrin
