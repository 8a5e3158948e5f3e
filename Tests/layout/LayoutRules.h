#pragma once

#include <string>
#include <vector>

namespace tavrin {

/// A source file: its path from the root of the project, and its text.
struct SourceUnit {
    std::string path;
    std::string text;
};

/// The .h and .cpp files below Code, by path.
std::vector<SourceUnit> readSourceUnits(const std::string& projectFolder);

/// What the units do against the rules of the house, one line each: "path:line: what". The rules: a room
/// includes only rooms below it; Qt stays in the presentation; the headers of ICU, SQLite, Exiv2 and expat
/// stay out of headers that others see; certain calls belong to certain rooms or to none; no unit grows too
/// long.
std::vector<std::string> layoutViolations(const std::vector<SourceUnit>& units);

} // namespace tavrin
