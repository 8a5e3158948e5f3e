#pragma once

namespace tavrin {

/// The commands of the edit menu for whatever field of text has the focus.
struct TextCommands {
    /// Performs "undo", "redo", "cut", "copy", "paste" or "selectAll"; false where the focus is on nothing
    /// that knows the command.
    static bool perform(const char* command);
};

} // namespace tavrin
