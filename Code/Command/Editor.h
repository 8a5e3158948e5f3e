#pragma once

#include "InterruptHandler.h"
#include "platform/files/Descriptor.h"

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
    ~Editor();
    Editor(const Editor&) = delete;
    Editor& operator=(const Editor&) = delete;

    /// Has the user edit the text, and waits for the end of the editor.
    std::variant<std::string, Failure> edit(std::string_view text);

  private:
    [[nodiscard]] int write(std::string_view text) const;
    std::string run();
    std::string waitFor(int child);
    std::variant<std::string, Failure> read(std::size_t mostBytes) const;

    InterruptHandler& interrupts;
    std::string command; ///< for the shell, with the file behind it; as it was given
    std::string path;    ///< of the folder
    Descriptor folder;
};

} // namespace tavrin
