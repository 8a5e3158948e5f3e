#include "engine/ProcessingStage.h"

#include "engine/ThreadDescription.h"
#include "store/StoreContext.h"
#include "support/DebugLog.h"

namespace tavrin {

void ProcessingStage::addError(std::string_view title, std::string_view message, std::string_view path) {
    context->insertProcessingError({std::string(title), std::string(message), std::string(path)});
}

bool ProcessingStage::saveAndRefaultObjects() {
    if (const auto error = context->commit()) {
        debugLog("could not save: {} in thread: {}", *error, threadDescription());
        return false;
    }
    context->refault();
    return true;
}

void ProcessingStage::saveAndRefaultFiles() {
    // Refaulting drops unchanged values only, so a failed commit loses nothing.
    static_cast<void>(context->commit());
    context->refault();
}

} // namespace tavrin
