#pragma once

#include "support/PropertyValue.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tavrin::test {

/// One line of a case table.
struct ActionCase {
    int line = 0;
    std::string action;
    PropertyDictionary parameters;
    std::int32_t rank = 1;
    std::u16string name;
    std::u16string expected;
};

/// Reads a table; its head tells the format. Throws std::runtime_error with the line for anything else.
std::vector<ActionCase> readCases(const std::string& path);

} // namespace tavrin::test
