#pragma once

#include "support/values/PropertyValue.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tavrin::test {

/// One line of a case table.
struct ActionCase {
    std::string place; ///< file and line, for messages
    std::string action;
    PropertyDictionary parameters;
    std::int32_t rank = 1;
    std::string path;
    std::string modified; ///< where told, a file last changed at this time takes the place of `path`
    std::string sample;   ///< where told, a copy of this sample file takes the place of `path`
    std::optional<std::string> list; ///< the content of the file that the parameter listFilePath is to name
    std::u16string name;
    std::u16string expected;
};

/// Reads all tables of a folder; README there tells the format. Throws std::runtime_error with the line for
/// anything else.
std::vector<ActionCase> readCases(const std::string& folder);

} // namespace tavrin::test
