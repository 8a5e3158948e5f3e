#pragma once

#include "support/values/PropertyValue.h"

#include <memory>
#include <optional>
#include <string>

namespace tavrin {

class BaseAction;

/// Is told of changed values of actions. Called on the thread that changes the value; for the actions that
/// the interface edits that is the main thread.
class ActionObserver {
  public:
    virtual ~ActionObserver() = default;
    /// A value is absent where it is no value of a property list (the list of steps, say).
    virtual void observeValueForKeyPath(const std::string& keyPath, BaseAction& object,
                                        const std::optional<PropertyValue>& oldValue,
                                        const std::optional<PropertyValue>& newValue) = 0;
};

/// Keeps an observer registered; when the last copy goes, so does the registration. May outlive the action.
using ActionObservation = std::shared_ptr<void>;

} // namespace tavrin
