#pragma once

#include "common/Testing.h"
#include "platform/files/Descriptor.h"

#include <sys/types.h>

namespace tavrin::test {

/// What became of a line of shell.
struct ProgramResult {
    int status = 0;
    std::string output;
    std::string error;
};

/// A fresh folder to run the real program in, with a home and data folder of its own, and with a search path
/// that finds it as "tvrn".
class Workplace {
  public:
    Workplace();

    [[nodiscard]] const TemporaryFolder& folder() const { return work; }
    /// Runs a line of shell in the folder, with nothing on standard input.
    [[nodiscard]] ProgramResult run(const std::string& line) const;
    /// What a process is started with to run the line there.
    [[nodiscard]] std::vector<std::string> arguments(const std::string& line) const;

  private:
    TemporaryFolder work;
    TemporaryFolder home;
};

/// A program that runs in a workplace with a terminal of its own, and somebody who reads and types.
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
    /// Waits for the end; the exit status, or -1 where a signal ended it.
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
