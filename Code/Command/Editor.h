#pragma once

#include "InterruptHandler.h"
#include "platform/files/EditorFile.h"

#include <string>
#include <string_view>
#include <variant>

namespace tavrin {

/// The editor that the environment names, with a text in a private file. Main thread.
class Editor {
  public:
    /// Why a text did not come back, as a sentence for the user.
    struct Failure {
        std::string reason;
    };

    /// Makes the folder, which lives as long as the object. `handler` outlives it. Throws UsageError where
    /// none can be made.
    explicit Editor(InterruptHandler& handler);

    /// Has the user edit the text, and waits for the end of the editor.
    std::variant<std::string, Failure> edit(std::string_view text);

  private:
    std::string run();
    std::string waitFor(int child);

    InterruptHandler& interrupts;
    std::string command; ///< for the shell, with the file behind it; as it was given
    EditorFile file;
};

} // namespace tavrin
