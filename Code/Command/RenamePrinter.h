#pragma once

#include "engine/renaming/RenameObserver.h"

namespace tavrin {

class Terminal;

/// Prints each item that a run has renamed as a row of a preview, at once.
class RenamePrinter : public RenameObserver {
  public:
    explicit RenamePrinter(Terminal& printedOn) : terminal(printedOn) {}

    /// A line feed does at first.
    void endRowsWithNull() { end = '\0'; }

    void itemWasRenamed(std::string_view from, std::string_view to) override;

  private:
    Terminal& terminal;
    char end = '\n';
};

} // namespace tavrin
