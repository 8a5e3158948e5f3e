#pragma once

#include "actions/ActionList.h"
#include "platform/propertylists/UserDefaults.h"

namespace tavrin {

/// The catalogue of actions over user defaults that live in memory and start empty, so that nothing that the
/// user has stored has a part in what the command does. Registers both as the shared ones for its life.
class Catalogue {
  public:
    Catalogue() {
        UserDefaults::setSharedInstance(&userDefaults);
        ActionList::setSharedActionList(&list);
    }
    ~Catalogue() {
        ActionList::setSharedActionList(nullptr);
        UserDefaults::setSharedInstance(nullptr);
    }
    Catalogue(const Catalogue&) = delete;
    Catalogue& operator=(const Catalogue&) = delete;

    [[nodiscard]] ActionList& actions() { return list; }
    [[nodiscard]] UserDefaults& defaults() { return userDefaults; }

  private:
    UserDefaults userDefaults;
    ActionList list;
};

} // namespace tavrin
