#pragma once

#include "engine/reading/ItemSelection.h"

#include <optional>
#include <string>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace tavrin {

/// The kinds of items that take part.
struct ItemKinds {
    bool files = false;
    bool folders = false;
    bool links = false;
};

/// What the command line says about the items besides their paths.
struct SelectionOptions {
    std::optional<std::string> filesFrom; ///< a path, or "-" for standard input
    bool null = false;                    ///< NUL ends paths, in the list and in what is printed
    ItemSelection items;                  ///< without what follows
    std::optional<ItemKinds> kinds;
    std::optional<int> depth; ///< from 1
};

/// `--files-from` and `--null`.
class ListParser {
  public:
    explicit ListParser(CLI::App& app);
    void read(SelectionOptions& into) const;

  private:
    CLI::Option* filesFrom;
    CLI::Option* null;
};

/// All of them.
class SelectionParser {
  public:
    explicit SelectionParser(CLI::App& app);
    /// Throws UsageError.
    [[nodiscard]] SelectionOptions read() const;

  private:
    ListParser list;
    CLI::Option* include;
    CLI::Option* exclude;
    CLI::Option* type;
    CLI::Option* depth;
    CLI::Option* newer;
    CLI::Option* older;
    CLI::Option* hidden;
    CLI::Option* links;
};

} // namespace tavrin
