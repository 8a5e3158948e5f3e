#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// The text in which people edit names: a line for each item, its number, a tab and its name, folder by
/// folder, with comments behind "#". Names are bytes of the file system, quoted as in recipes where they
/// would not survive an editor.
class NamesFile {
  public:
    struct Item {
        std::string name;  ///< at present
        std::string start; ///< what the text begins with
    };
    /// What a text says of the items.
    struct Reading {
        std::vector<std::string> names; ///< by item; its present one where it has no line
        std::vector<std::size_t> lines; ///< by item: its line from 1, marks not counted; 0 where it has none
        std::map<std::size_t, std::string> wrong; ///< by line: the reason
        bool hasLines = false;                    ///< beside comments
    };

    /// Items that are added from now on are those of this folder, which is shown as the text says.
    void beginFolder(std::string_view shown);
    void add(Item item);
    [[nodiscard]] const std::vector<Item>& items() const { return all; }

    /// The text to begin with.
    [[nodiscard]] std::string text() const;
    /// Reads a text that may come from any editor: a byte order mark and carriage returns at the ends of
    /// lines are passed over.
    [[nodiscard]] Reading read(std::string_view edited) const;
    /// The text with the reasons as comments above the lines, instead of those that it holds from before.
    [[nodiscard]] static std::string marked(std::string_view edited,
                                            const std::map<std::size_t, std::string>& wrong);
    /// Whether two texts say the same, but for marks and what `read` passes over.
    [[nodiscard]] static bool isSame(std::string_view a, std::string_view b);

  private:
    struct Folder {
        std::string shown;
        std::size_t firstItem;
    };

    void readLine(std::string_view line, std::size_t number, Reading& reading) const;
    void findSameNames(Reading& reading) const;

    std::vector<Folder> folders;
    std::vector<Item> all;
};

} // namespace tavrin
