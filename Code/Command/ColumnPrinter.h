#pragma once

#include "OutputBuffer.h"
#include "ShownName.h"
#include "store/queries/Predicate.h"

#include <cstddef>
#include <string>
#include <vector>

namespace tavrin {

class StoreContext;

/// Prints a preview for people: what changes in two columns, old and new, folder by folder, and a summary.
/// No line is wider than the terminal. Holds a page of rows at a time.
class ColumnPrinter {
  public:
    struct Options {
        std::size_t columns = 80;
        bool paints = false; ///< colours
        bool all = false;    ///< also what stays as it is
    };
    ColumnPrinter(const Options& printOptions, OutputBuffer& target);

    /// Hold the context's mutex.
    void print(StoreContext& context, const Predicate& predicate);

  private:
    struct Row {
        ShownName before;
        ShownName after;
        bool changes = false;
        std::string note; ///< what is to be told beside the names; empty where nothing is
        bool isProblem = false;
        std::string heading; ///< of the folder that begins with this row
    };
    struct Layout {
        std::size_t before = 0; ///< columns of the two names
        std::size_t after = 0;
        bool isStacked = false; ///< the new name has a line of its own
    };

    void add(StoreContext& context, RowId id);
    void printPage();
    void alignPage();
    [[nodiscard]] Layout layoutOf(const Row& row) const;
    void printRow(const Row& row);
    void printNote(const Row& row, std::size_t used);
    void printSummary();
    /// The words in lines of the terminal's width behind so many blanks.
    void printWrapped(std::string_view words, std::size_t indent, const Paint& how);
    [[nodiscard]] const Paint& painted(const Paint& how) const { return options.paints ? how : paint::plain; }

    Options options;
    OutputBuffer& output;
    std::vector<Row> page;
    std::size_t rowsInPage = 0;
    const std::size_t room;  ///< of a line for two names
    std::size_t aligned = 0; ///< where the new names begin: of all pages so far, so that they don't jump
    std::string nextHeading;
    bool hasPrinted = false;
    std::size_t total = 0;
    std::size_t changing = 0;
    std::size_t problems = 0;
    std::u16string name;
    std::u16string finalName;
};

} // namespace tavrin
