#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// The program's own files.
struct ResourceFolder {
    /// The folders in which a resource is sought, in order: the one that TAVRIN_RESOURCES names alone, else
    /// the one beside the program, the installed one, the one of the sources (not in a package).
    static std::vector<std::string> candidates();
};

/// The path of a resource: in the first folder that holds it, else in the last one.
std::string resourcePath(std::string_view name);

} // namespace tavrin
