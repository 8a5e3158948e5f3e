#pragma once

#include "common/TemporaryFolder.h"

#include <string>
#include <string_view>
#include <sys/types.h>

namespace tavrin::test {

/// What became of a program: 128 + the number where a signal ended it.
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
    /// Where the program keeps its data.
    [[nodiscard]] std::string dataFolder() const { return home.path("data/Tavrin 9"); }

    /// Where it keeps the records of its runs.
    [[nodiscard]] std::string recordsFolder() const { return home.path("state/tavrin/runs"); }

    /// Runs a line of shell in the folder, with nothing on standard input.
    [[nodiscard]] ProgramResult run(const std::string& line) const;
    /// Starts it and leaves the rest to the caller; standard input and output are `terminal`.
    [[nodiscard]] pid_t start(const std::string& line, int terminal) const;

  private:
    [[nodiscard]] pid_t spawn(const std::string& line, int input, int output, int error,
                              bool inSession) const;

    TemporaryFolder work;
    TemporaryFolder home;
};

/// The exit status of a process that is waited for.
int waitForStatus(pid_t process);

} // namespace tavrin::test
