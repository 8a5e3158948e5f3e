#include "ColumnPrinter.h"

#include "PathArguments.h"
#include "engine/naming/NameProblems.h"
#include "store/contexts/StoreContext.h"
#include "support/text/DisplayText.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <utility>

namespace tavrin {

namespace {

constexpr std::size_t rowsPerPage = 1000;
constexpr std::string_view arrow = " → ";
constexpr std::size_t arrowColumns = 3;
constexpr std::size_t gutter = 2; // for the mark of a problem
constexpr std::size_t noteIndent = 4;
/// Wider names stand beside the column that the others make.
constexpr std::size_t widestAligned = 48;
/// Less room for two names than this puts them one below the other.
constexpr std::size_t leastRoom = 20;

/// Of a line, for two names.
std::size_t roomOf(std::size_t columns) {
    return std::max(columns, gutter + arrowColumns + 2) - gutter - arrowColumns;
}

void appendBlanks(std::size_t count, std::string& into) { into.append(count, ' '); }

} // namespace

ColumnPrinter::ColumnPrinter(const Options& printOptions, OutputBuffer& target)
    : options(printOptions), output(target), room(roomOf(options.columns)) {}

void ColumnPrinter::print(StoreContext& context, const Predicate& predicate) {
    const std::vector<RowId> folders =
        context.fetch({FetchEntity::node, Predicate::isTrue(NodeKey::treatAsFolder), {}, 0});
    std::vector<RowId> shown;
    std::ranges::copy_if(folders, std::back_inserter(shown),
                         [&](RowId folder) { return context.childCount(folder) > 0; });
    std::error_code ignored;
    const std::string workingFolder = std::filesystem::current_path(ignored).string();
    for (const RowId folder : shown) {
        if (shown.size() > 1)
            nextHeading = shownFolder(context.fullPath(folder), workingFolder);
        for (const RowId id : context.fetch(
                 {FetchEntity::file, predicate.with(Predicate::hasParent(folder)), {{NodeKey::name}}, 0})) {
            add(context, id);
            if (output.error() != 0)
                return;
        }
    }
    printPage();
    printSummary();
}

void ColumnPrinter::add(StoreContext& context, RowId id) {
    ++total;
    context.name(id, name);
    context.finalName(id, finalName);
    const bool changes = name != finalName && !text::canonicallyEqual(name, finalName);
    const ProblemNote note = noteOf(context, id);
    const bool isProblem = !note.form.empty() && !note.isInfo;
    changing += changes && !isProblem ? 1 : 0;
    problems += isProblem ? 1 : 0;
    if (!changes && !isProblem && !options.all)
        return;
    if (rowsInPage == page.size())
        page.emplace_back();
    Row& row = page[rowsInPage++];
    row.before.set(text::precomposed(name));
    row.changes = changes;
    if (changes) {
        row.after.set(text::precomposed(finalName));
        ShownName::compare(row.before, row.after);
    }
    row.note = display::visible(note.sentence());
    row.isProblem = isProblem;
    row.heading = std::exchange(nextHeading, {});
    if (rowsInPage == rowsPerPage)
        printPage();
}

void ColumnPrinter::printPage() {
    alignPage();
    for (std::size_t i = 0; i < rowsInPage; ++i) {
        printRow(page[i]);
        output.flushIfFull();
    }
    rowsInPage = 0;
}

/// A few names that are much longer than the others don't push the column away from these.
void ColumnPrinter::alignPage() {
    for (std::size_t i = 0; i < rowsInPage; ++i)
        if (const std::size_t width = page[i].before.columns();
            page[i].changes && width <= std::min(widestAligned, room / 2))
            aligned = std::max(aligned, width);
}

ColumnPrinter::Layout ColumnPrinter::layoutOf(const Row& row) const {
    const std::size_t before = row.before.columns();
    const std::size_t after = row.after.columns();
    if (std::max(before, aligned) + after <= room)
        return {std::max(before, aligned), after, false};
    if (before + after <= room)
        return {before, after, false};
    if (room < leastRoom)
        return {room + arrowColumns, room + gutter, true};
    const std::size_t half = room / 2;
    const std::size_t left = before <= half ? before : std::max(half, room - std::min(after, room));
    return {left, room - left, false};
}

void ColumnPrinter::printRow(const Row& row) {
    std::string& into = output.content();
    if (!row.heading.empty()) {
        if (std::exchange(hasPrinted, true))
            into += '\n';
        printWrapped(row.heading, 0, painted(paint::heading));
    }
    hasPrinted = true;
    if (row.isProblem) {
        paint::append("!", painted(paint::problem), into);
        into += ' ';
    } else {
        appendBlanks(gutter, into);
    }
    std::size_t used = gutter;
    if (!row.changes) {
        used += row.before.append(options.columns - std::min(options.columns, gutter + 1) + 1, paint::plain,
                                  into);
    } else {
        const Layout layout = layoutOf(row);
        const std::size_t columns = row.before.append(layout.before, painted(paint::removed), into);
        if (layout.isStacked) {
            into += '\n';
            used = 0;
        } else {
            appendBlanks(layout.before - columns, into);
            used += layout.before;
        }
        into += arrow;
        used += arrowColumns + row.after.append(layout.after, painted(paint::added), into);
    }
    printNote(row, used);
}

void ColumnPrinter::printNote(const Row& row, std::size_t used) {
    std::string& into = output.content();
    const Paint& how = painted(row.isProblem ? paint::problem : paint::plain);
    if (row.note.empty()) {
        into += '\n';
    } else if (used + gutter + display::columns(text::fromBytes(row.note)) <= options.columns) {
        appendBlanks(gutter, into);
        paint::append(row.note, how, into);
        into += '\n';
    } else {
        into += '\n';
        printWrapped(row.note, std::min(noteIndent, options.columns / 4), how);
    }
}

void ColumnPrinter::printWrapped(std::string_view words, std::size_t indent, const Paint& how) {
    std::string& into = output.content();
    const std::size_t width = std::max<std::size_t>(options.columns, indent + 1) - indent;
    const std::u16string all = text::fromBytes(display::visible(words));
    std::u16string_view rest = all;
    while (!rest.empty()) {
        std::size_t end = 0;
        std::size_t lastBlank = 0;
        for (std::size_t taken = 0; end < rest.size();) {
            const std::size_t next = text::composedSequenceEnd(rest, end);
            taken += display::columns(rest.substr(end, next - end));
            if (rest[end] == u' ')
                lastBlank = end;
            if (taken > width && end > 0)
                break;
            end = next;
        }
        if (end < rest.size() && lastBlank > 0)
            end = lastBlank;
        appendBlanks(indent, into);
        paint::append(text::toUtf8(rest.substr(0, end)), how, into);
        into += '\n';
        rest.remove_prefix(end);
        rest.remove_prefix(std::min(rest.find_first_not_of(u' '), rest.size()));
    }
}

void ColumnPrinter::printSummary() {
    std::string line = fmt::format("{} of {} {}", changing, total,
                                   total == 1      ? "name changes"
                                   : changing == 1 ? "names changes"
                                                   : "names change");
    if (problems > 0)
        line += fmt::format(", {} {}", problems, problems == 1 ? "problem" : "problems");
    if (hasPrinted)
        output.content() += '\n';
    printWrapped(line + ".", 0, painted(problems > 0 ? paint::problem : paint::plain));
}

} // namespace tavrin
