#include "presentation/settings/ParameterBinding.h"

#include "actions/BaseAction.h"

#include <utility>

namespace tavrin {

ParameterBinding::ParameterBinding(BaseAction& boundAction, std::string boundKey, Show showValue)
    : bound(boundAction), observedKey(std::move(boundKey)), show(std::move(showValue)),
      observation(bound.registerObserver(*this, observedKey)) {
    show(bound.valueForKey(observedKey));
}

void ParameterBinding::write(const std::optional<PropertyValue>& value) {
    std::optional<PropertyValue> stored = value;
    if (stored)
        stored = bound.validatedValue(*stored, observedKey);
    isWriting = true;
    bound.setValue(stored, observedKey);
    // Checks that the action makes when it refreshes itself may change the value once more.
    bound.prepare();
    isWriting = false;
    const std::optional<PropertyValue> present = bound.valueForKey(observedKey);
    if (value && present != value)
        show(present);
}

void ParameterBinding::observeValueForKeyPath(const std::string&, BaseAction&,
                                              const std::optional<PropertyValue>&,
                                              const std::optional<PropertyValue>& newValue) {
    if (!isWriting)
        show(newValue);
}

} // namespace tavrin
