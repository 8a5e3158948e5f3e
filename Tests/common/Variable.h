#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace tavrin::test {

/// Sets or unsets a variable of the environment for one test.
class Variable {
  public:
    Variable(const char* variable, const char* value) : name(variable) {
        if (const char* present = std::getenv(variable))
            former = present;
        set(value);
    }
    ~Variable() { set(former ? former->c_str() : nullptr); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

  private:
    void set(const char* value) { value != nullptr ? ::setenv(name, value, 1) : ::unsetenv(name); }
    const char* name;
    std::optional<std::string> former;
};

} // namespace tavrin::test
