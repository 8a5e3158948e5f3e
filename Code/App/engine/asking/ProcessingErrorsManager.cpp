#include "engine/asking/ProcessingErrorsManager.h"

#include "engine/pipeline/EngineHost.h"
#include "store/contexts/StoreContext.h"

#include <mutex>

namespace tavrin {

bool ProcessingErrorsManager::areThereErrors(EngineHost& host) {
    StoreContext& context = host.managedObjectContext();
    const std::lock_guard lock(context.mutex());
    return !context.processingErrors().empty();
}

} // namespace tavrin
