#pragma once

#include <fmt/core.h>

#include <string_view>
#include <utility>

namespace tavrin {

/// Where finished log lines go; made by the platform, replaced by tests. Called from any thread.
class LogSink {
  public:
    virtual ~LogSink() = default;
    virtual void write(std::string_view line) = 0;
};

/// Sets the sink of debugLog (not owned; null drops all lines) and returns the former one.
LogSink* setDebugLogSink(LogSink* sink);

/// The process-wide switch, off at start.
void setDebugLogIsOn(bool isOn);
/// Whether a line written now would reach a sink: the test before costly arguments are made.
bool debugLogIsOn();
void writeDebugLogLine(std::string_view line);

/// The program's one logging call. Nothing is formatted while the switch is off. Any thread.
template <typename... Arguments>
void debugLog(fmt::format_string<Arguments...> format, Arguments&&... arguments) {
    if (debugLogIsOn())
        writeDebugLogLine(fmt::format(format, std::forward<Arguments>(arguments)...));
}

} // namespace tavrin
