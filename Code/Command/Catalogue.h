#pragma once

#include "actions/ActionList.h"
#include "platform/propertylists/UserDefaults.h"

#include <memory>

namespace tavrin {

/// The catalogue of actions over user defaults that live in memory and start empty, so that nothing that the
/// user has stored has a part in what the command does. Registers both as the shared ones for its life.
class Catalogue {
  public:
    /// Throws UsageError when the menus cannot be read.
    Catalogue();
    ~Catalogue();
    Catalogue(const Catalogue&) = delete;
    Catalogue& operator=(const Catalogue&) = delete;

    [[nodiscard]] ActionList& actions() const { return *list; }
    [[nodiscard]] UserDefaults& defaults() { return userDefaults; }

  private:
    UserDefaults userDefaults;
    std::unique_ptr<ActionList> list;
};

} // namespace tavrin
