#pragma once

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

} // namespace tavrin
