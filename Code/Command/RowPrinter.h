#pragma once

#include "CommandLine.h"
#include "OutputBuffer.h"
#include "ShownName.h"
#include "store/queries/Predicate.h"

#include <string>

namespace tavrin {

class StoreContext;
struct ToldProblem;

/// Prints the rows of a preview, by current name, as the options say.
class RowPrinter {
  public:
    /// `showControlCharacters` where people read it: a terminal.
    RowPrinter(const PreviewOptions& printOptions, OutputBuffer& target, bool showControlCharacters)
        : options(printOptions), output(target), makeVisible(showControlCharacters),
          paints(options.color == ColorChoice::always && options.format == 0) {}

    /// Hold the context's mutex.
    void print(StoreContext& context, const Predicate& predicate);

  private:
    bool printAsHeld(StoreContext& context, RowId id);
    void printLine(StoreContext& context, RowId id);
    void printPainted();
    void printObject(StoreContext& context, RowId id);
    void appendField(std::u16string_view text);
    void appendMember(std::string_view key, std::u16string_view text);
    void appendMember(std::string_view key, bool value);
    void appendProblem(const ToldProblem& problem);

    const PreviewOptions& options;
    OutputBuffer& output;
    bool makeVisible;
    bool paints; ///< what differs between the names of a row
    // Of the row in hand; kept to spare allocations.
    std::u16string name;
    std::u16string finalName;
    std::string path;
    std::string bytes;
    ShownName before;
    ShownName after;
};

} // namespace tavrin
