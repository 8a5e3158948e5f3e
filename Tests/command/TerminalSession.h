#pragma once

#include "command/Workplace.h"
#include "platform/files/Descriptor.h"

#include <string>
#include <string_view>

namespace tavrin::test {

/// A line of shell that runs in a workplace with a terminal of its own, and somebody who reads and types.
class TerminalSession {
  public:
    TerminalSession(const Workplace& workplace, const std::string& line);
    ~TerminalSession();
    TerminalSession(const TerminalSession&) = delete;
    TerminalSession& operator=(const TerminalSession&) = delete;

    /// Waits until the text has come up, behind what was awaited before; false when the program ends first,
    /// or says nothing for a long time.
    [[nodiscard]] bool await(std::string_view text);
    void type(std::string_view text) const;
    void interrupt() const;
    /// Waits for the end; the exit status.
    int end();
    /// All that has been shown.
    [[nodiscard]] const std::string& screen() const { return shown; }

  private:
    bool readMore();

    Descriptor terminal;
    pid_t process = 0;
    std::string shown;
    std::size_t awaited = 0;
};

} // namespace tavrin::test
