#pragma once

#include "engine/renaming/RenameObserver.h"

namespace tavrin {

class Terminal;

/// Prints each item that a run has renamed as a row of a preview, at once.
class RenamePrinter : public RenameObserver {
  public:
    explicit RenamePrinter(Terminal& printedOn) : terminal(printedOn) {}

    void itemWasRenamed(std::string_view from, std::string_view to) override;

  private:
    Terminal& terminal;
};

} // namespace tavrin
