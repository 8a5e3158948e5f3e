#pragma once

namespace tavrin {

class ActionList;
class MainController;
class UserDefaults;

/// What the units of the window work with; all of it outlives them.
struct WindowServices {
    MainController& controller;
    ActionList& actionList;
    UserDefaults& defaults;
};

} // namespace tavrin
