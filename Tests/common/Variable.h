#pragma once

#include <cstdlib>
#include <ctime>
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
    void set(const char* value) {
        value != nullptr ? ::setenv(name, value, 1) : ::unsetenv(name);
        ::tzset(); // it may have been that of the time zone
    }
    const char* name;
    std::optional<std::string> former;
};

/// Local time is that of this zone for one test; told by rules, so that no table of zones is needed.
class LocalTime : private Variable {
  public:
    explicit LocalTime(const char* zone = "CET-1CEST,M3.5.0,M10.5.0/3") : Variable("TZ", zone) {}
};

} // namespace tavrin::test
