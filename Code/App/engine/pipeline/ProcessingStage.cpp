#include "engine/pipeline/ProcessingStage.h"

#include "store/contexts/StoreContext.h"

namespace tavrin {

void ProcessingStage::addError(std::string_view title, std::string_view message, std::string_view path) {
    context->insertProcessingError({std::string(title), std::string(message), std::string(path)});
}

void ProcessingStage::saveAndRefaultObjects() {
    context->commit();
    context->refault();
}

} // namespace tavrin
