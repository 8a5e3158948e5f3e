#pragma once

#include <string>

namespace tavrin {

/// A failure to show at the end of a run. Title and message are UTF-8, the path is in bytes.
struct ProcessingError {
    std::string title;
    std::string message;
    std::string path;
    bool operator==(const ProcessingError&) const = default;
};

} // namespace tavrin
