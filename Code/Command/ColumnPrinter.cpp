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
constexpr std::size_t reasonIndent = 4;
/// Less room for two names than this puts them one below the other.
constexpr std::size_t leastRoom = 20;

void appendBlanks(std::size_t count, std::string& into) { into.append(count, ' '); }

} // namespace

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
    std::optional<ToldProblem> problem = problemOf(context, id);
    changing += changes ? 1 : 0;
    problems += problem ? 1 : 0;
    if (!changes && !problem && !options.all)
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
    row.reason = problem ? std::move(problem->message) : std::string();
    row.heading = std::exchange(nextHeading, {});
    if (rowsInPage == rowsPerPage)
        printPage();
}

void ColumnPrinter::printPage() {
    const Layout layout = layoutOfPage();
    for (std::size_t i = 0; i < rowsInPage; ++i) {
        printRow(page[i], layout);
        output.flushIfFull();
    }
    rowsInPage = 0;
}

ColumnPrinter::Layout ColumnPrinter::layoutOfPage() {
    std::size_t after = 0;
    for (std::size_t i = 0; i < rowsInPage; ++i) {
        if (!page[i].changes)
            continue;
        widestBefore = std::max(widestBefore, page[i].before.columns());
        after = std::max(after, page[i].after.columns());
    }
    const std::size_t room = std::max(options.columns, gutter + arrowColumns + 2) - gutter - arrowColumns;
    if (widestBefore + after <= room)
        return {widestBefore, after, false};
    if (room < leastRoom)
        return {room + arrowColumns, room + gutter, true};
    const std::size_t half = room / 2;
    const std::size_t before =
        widestBefore <= half ? widestBefore : std::max(half, room - std::min(after, room));
    return {before, room - before, false};
}

void ColumnPrinter::printRow(const Row& row, const Layout& layout) {
    std::string& into = output.content();
    if (!row.heading.empty()) {
        if (std::exchange(hasPrinted, true))
            into += '\n';
        printWrapped(row.heading, 0, painted(paint::heading));
    }
    hasPrinted = true;
    if (row.reason.empty())
        appendBlanks(gutter, into);
    else {
        paint::append("!", painted(paint::problem), into);
        into += ' ';
    }
    std::size_t used = gutter;
    if (!row.changes) {
        used += row.before.append(options.columns - std::min(options.columns, gutter + 1) + 1, paint::plain,
                                  into);
    } else {
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
    printReason(row.reason, used);
}

void ColumnPrinter::printReason(const std::string& reason, std::size_t used) {
    std::string& into = output.content();
    if (reason.empty()) {
        into += '\n';
    } else if (used + gutter + display::columns(text::fromBytes(reason)) <= options.columns) {
        appendBlanks(gutter, into);
        paint::append(reason, painted(paint::problem), into);
        into += '\n';
    } else {
        into += '\n';
        printWrapped(reason, std::min(reasonIndent, options.columns / 4), painted(paint::problem));
    }
}

void ColumnPrinter::printWrapped(std::string_view words, std::size_t indent, const Paint& how) {
    std::string& into = output.content();
    const std::size_t room = std::max<std::size_t>(options.columns, indent + 1) - indent;
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
            if (taken > room && end > 0)
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
