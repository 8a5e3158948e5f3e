#pragma once

#include <string>
#include <variant>
#include <vector>

namespace tavrin {

/// What follows the program's name on the command line of the window.
class WindowArguments {
  public:
    /// There is nothing to start: a text for standard output where the status is 0, else for standard error.
    struct End {
        int status = 0;
        std::string text;
    };

    /// Answers what needs no window, and takes aside what stands behind "--", before Qt looks at the rest.
    /// `count` and `arguments` are those of the program; they are shortened to what Qt is to see.
    [[nodiscard]] static std::variant<End, WindowArguments> take(int& count, char** arguments);

    /// The paths, absolute and in bytes, once Qt has taken its own options from the command line.
    [[nodiscard]] std::variant<End, std::vector<std::string>> paths(int count, char** arguments) const;

    /// The same for any paths of a command line. What leads nowhere gets a full path all the same.
    [[nodiscard]] static std::vector<std::string> absolute(const std::vector<std::string>& given);

  private:
    std::vector<std::string> behindDashes;
};

} // namespace tavrin
