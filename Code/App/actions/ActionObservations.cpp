#include "actions/BaseAction.h"

#include <algorithm>

namespace tavrin {

// The observing half of BaseAction.

ActionObservation BaseAction::registerObserverForAllValues(ActionObserver& observer) {
    auto observation = std::make_shared<char>();
    registerObserverForAllValues(observer, observation);
    return observation;
}

void BaseAction::registerObserverForAllValues(ActionObserver& observer, std::weak_ptr<void> lifetime) {
    std::vector<std::string> keys;
    for (const auto& [key, value] : dic)
        keys.push_back(key);
    observations.push_back({std::move(lifetime), &observer, std::move(keys)});
}

ActionObservation BaseAction::registerObserver(ActionObserver& observer, const std::string& key) {
    auto observation = std::make_shared<char>();
    observations.push_back({observation, &observer, {key}});
    return observation;
}

std::vector<std::string_view> BaseAction::keyPathsForValuesAffectingValueForKey(std::string_view) const {
    return {};
}

std::vector<std::string> BaseAction::observedKeysChangingWith(const std::string& key) const {
    std::vector<std::string> changing;
    const auto add = [&](const std::string& observed) {
        if (std::find(changing.begin(), changing.end(), observed) != changing.end())
            return;
        const auto causes = keyPathsForValuesAffectingValueForKey(observed);
        if (observed == key || std::find(causes.begin(), causes.end(), key) != causes.end())
            changing.push_back(observed);
    };
    for (const auto& each : observations)
        std::for_each(each.keys.begin(), each.keys.end(), add);
    return changing;
}

void BaseAction::willChangeValueForKey(const std::string& key) {
    std::erase_if(observations, [](const auto& each) { return each.lifetime.expired(); });
    for (const auto& observed : observedKeysChangingWith(key))
        valuesBeforeChange.insert_or_assign(observed, valueForKey(observed));
}

void BaseAction::didChangeValueForKey(const std::string& key) {
    for (const auto& observed : observedKeysChangingWith(key)) {
        auto before = valuesBeforeChange.extract(observed);
        const auto oldValue = before.empty() ? std::nullopt : std::move(before.mapped());
        const auto newValue = valueForKey(observed);
        // An observer may register others or go away meanwhile, so the list is not walked in place.
        for (const auto& each : std::vector<Observation>(observations)) {
            const auto alive = each.lifetime.lock();
            if (alive && std::find(each.keys.begin(), each.keys.end(), observed) != each.keys.end())
                each.observer->observeValueForKeyPath(observed, *this, oldValue, newValue);
        }
    }
}

} // namespace tavrin
