#pragma once

#include "actions/ActionObserver.h"

#include <functional>
#include <optional>
#include <string>

namespace tavrin {

class BaseAction;

/// Ties one key of an action to a control: writes what the user enters, and shows what changes elsewhere. The
/// action must live as long as anything is written. Main thread.
class ParameterBinding final : private ActionObserver {
  public:
    using Show = std::function<void(const std::optional<PropertyValue>&)>;

    /// `show` brings a value into the control; it is called at once, and at each change that does not come
    /// from `write`, but for what a check has made of the value that was written.
    ParameterBinding(BaseAction& boundAction, std::string boundKey, Show showValue);

    [[nodiscard]] BaseAction& action() const { return bound; }
    [[nodiscard]] const std::string& key() const { return observedKey; }
    /// Checks a value and stores what the check has made of it; nothing stands for an emptied field.
    void write(const std::optional<PropertyValue>& value);

  private:
    void observeValueForKeyPath(const std::string& keyPath, BaseAction& object,
                                const std::optional<PropertyValue>& oldValue,
                                const std::optional<PropertyValue>& newValue) override;

    BaseAction& bound;
    std::string observedKey;
    Show show;
    bool isWriting = false;
    ActionObservation observation;
};

} // namespace tavrin
