#pragma once

#include "CommandLine.h"
#include "ExitStatus.h"
#include "OutputBuffer.h"
#include "platform/files/Descriptor.h"

#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

/// What the command is connected to: standard output and error, and the terminal to ask on. Main thread,
/// but for what says otherwise.
class Terminal {
  public:
    Terminal();

    /// Standard output.
    [[nodiscard]] OutputBuffer& output() { return standardOutput; }
    /// As it may be written to standard output: control characters visible where people read it.
    [[nodiscard]] std::string shown(std::string_view bytes) const;
    [[nodiscard]] bool outputIsTerminal() const { return outputIsForPeople; }
    /// How many columns the terminal of standard output has; at least 1.
    [[nodiscard]] std::size_t columns() const;
    /// Whether standard output is written in colours.
    [[nodiscard]] bool paints(ColorChoice choice) const;
    /// Writes to standard output at once, and leaves the progress on its line. Any thread, while no other
    /// writes there.
    void printNow(std::string_view text);
    /// Writes what is left of the output; a failure to write it is told, and is the status.
    ExitStatus finish(ExitStatus status = ExitStatus::allWell);

    /// How many columns the terminal of standard error has; the usual number where it is none.
    [[nodiscard]] std::size_t errorColumns() const;
    [[nodiscard]] bool errorIsTerminal() const { return errorIsForPeople; }
    /// One line to standard error, whatever it holds: control characters visible where people read it.
    void complain(std::string_view line);

    /// Standard input is read for other things: from now on answers come from the terminal that the process
    /// belongs to.
    void askElsewhere();
    /// Whether there is somebody to ask: the input of answers and standard error are a terminal.
    [[nodiscard]] bool canAsk() const;
    /// Shows a question on standard error, as `complain` would, and reads a line of the answer; absent at the
    /// end of the input, or when `interruption` becomes readable meanwhile.
    [[nodiscard]] std::optional<std::string> ask(std::string_view question, int interruption);

    /// Shows a line of ASCII in place of the last one, if standard error is a terminal.
    void showProgress(std::string_view line);
    void clearProgress();

  private:
    [[nodiscard]] std::string shownInError(std::string_view bytes) const;

    void eraseProgress();

    OutputBuffer standardOutput;
    bool outputIsForPeople;
    bool errorIsForPeople;
    int input;                 ///< of answers
    Descriptor ownTerminal;    ///< where that is not standard input
    std::mutex writing;        ///< guards what follows, and whole lines
    std::string progressShown; ///< empty: none
};

} // namespace tavrin
