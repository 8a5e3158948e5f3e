#pragma once

#include <string>
#include <string_view>

namespace tavrin {

/// The version of the running system.
struct SystemVersion {
    /// Three numbers as "x.y.z": of the kernel, else what the distribution tells of itself; "0.0.0" where
    /// neither does.
    [[nodiscard]] static std::string asText();

    /// The first three numbers of a kernel release such as "6.1.0-13-amd64"; empty when it begins with none.
    [[nodiscard]] static std::string ofKernelRelease(std::string_view release);
    /// The value of VERSION_ID in the content of an os-release file; empty when there is none.
    [[nodiscard]] static std::string ofDistribution(std::string_view osRelease);
};

} // namespace tavrin
