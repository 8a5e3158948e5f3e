#pragma once

#include <fmt/core.h>

#include <functional>
#include <string>
#include <thread>

namespace tavrin {

/// The calling thread, as log lines name it.
inline std::string threadDescription() {
    return fmt::format("<thread {:x}>", std::hash<std::thread::id>()(std::this_thread::get_id()));
}

} // namespace tavrin
