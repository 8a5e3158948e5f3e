#pragma once

#include <string>
#include <string_view>
#include <variant>

namespace tavrin {

/// Thunar's list of custom actions (uca.xml), with one action that is ours. Every byte outside that action
/// stays as it is. No file is touched here.
class ThunarActions {
  public:
    struct Error {
        std::string message;
    };

    static constexpr std::string_view id = "net-calderwick-tavrin-1";
    static constexpr std::string_view emptyList =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<actions>\n</actions>\n";
    static constexpr std::size_t sizeLimit = std::size_t{4} << 20;

    /// Of the bytes of the file; an error where it is no such list, or one that can't be edited safely.
    [[nodiscard]] static std::variant<Error, ThunarActions> read(std::string_view list);

    /// The command of our action, empty where there is none.
    [[nodiscard]] const std::string& command() const { return ownCommand; }
    /// The list with our action, once, running this command (UTF-8).
    [[nodiscard]] std::string with(std::string_view command) const;
    [[nodiscard]] std::string without() const { return rest; }

  private:
    std::string ownCommand;
    std::string rest;      ///< the list without our action
    std::size_t place = 0; ///< in it: where an action goes
    bool isBare = false;   ///< the root is "<actions/>", and its "/>" is this place
};

} // namespace tavrin
