#pragma once

#include <stdexcept>

namespace tavrin {

/// A broken invariant of the actions: a fault of the program or of what was handed to it unchecked.
class ActionError : public std::logic_error {
  public:
    using std::logic_error::logic_error;
};

/// An action was asked for by a name that the catalogue does not know.
class UnknownActionError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

} // namespace tavrin
