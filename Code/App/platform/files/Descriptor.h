#pragma once

#include <cstddef>
#include <unistd.h>
#include <utility>

namespace tavrin {

/// A file descriptor with one owner.
class Descriptor {
  public:
    Descriptor() = default;
    explicit Descriptor(int value) : number(value) {}
    Descriptor(Descriptor&& other) noexcept : number(std::exchange(other.number, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number, other.number);
        return *this;
    }
    ~Descriptor() { reset(); }

    [[nodiscard]] int get() const { return number; }
    explicit operator bool() const { return number >= 0; }
    void reset() {
        if (number >= 0)
            ::close(std::exchange(number, -1));
    }
    [[nodiscard]] int release() { return std::exchange(number, -1); }

  private:
    int number = -1;
};

/// Raises the number of descriptors that the process may hold to this, or as far as the system allows; the
/// number that it may hold now. Any thread.
std::size_t raiseDescriptorLimit(std::size_t wanted);

/// Opens those of the descriptors 0, 1 and 2 that the caller of the program has closed on /dev/null, so that
/// nothing opened later gets their number and is taken for standard output. To be called before anything else
/// opens a descriptor.
void openStandardDescriptors();

} // namespace tavrin
