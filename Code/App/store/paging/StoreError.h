#pragma once

#include <stdexcept>

namespace tavrin {

/// The store could not be read: the pipeline answers by moving it into memory.
class StoreError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

} // namespace tavrin
