#pragma once

namespace tavrin {

/// Of the running program, such as "1.2.3": the project's, as the build knows it.
extern const char* const programVersion;

} // namespace tavrin
