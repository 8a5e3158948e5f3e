#include "engine/naming/NameProblems.h"

#include "store/contexts/StoreContext.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <array>

namespace tavrin {

namespace {

struct Words {
    NameProblem problem;
    std::string_view code;
    std::string_view message;
};

using enum NameProblem;

constexpr std::array table{
    Words{none, "", ""},
    Words{empty, "empty", "The new name is empty"},
    Words{holdsNul, "forbidden", "It holds a character that ends a name"},
    Words{standsForFolder, "forbidden", "This name stands for a folder itself"},
    Words{cutCharacter, "cut-character", "It cuts a character in two"},
    Words{tooManyBytes, "too-long", "File name too long"},
    Words{tooManyUnits, "too-long", "File name too long"},
    Words{foreignCharacter, "forbidden", "The file system takes no name with one of its characters"},
    Words{taken, "taken", "Another file with this name already exists in this folder."},
    Words{conflict, "conflict", "Another item is to get the same name"},
    Words{lockedFolder, "read-only", "You may not rename anything in this folder"},
    Words{lockedItem, "read-only", "Only its owner may rename it in this folder"},
    Words{readOnlyVolume, "read-only", "Read-only file system"},
    Words{link, "link",
          "This file is a symbolic link and for safety reasons, Tavrin will not rename symbolic links."},
    Words{gone, "gone", "No such file: it has been removed or renamed since the list was read"},
    Words{replaced, "gone", "Another kind of item has its name now"},
    Words{folderReplaced, "gone", "The folder has been replaced by another since the list was read"},
    Words{lostExchange, "gone", "An item with which it was to exchange names is gone"},
};

const Words& wordsOf(NameProblem problem) {
    static_assert(
        [] {
            for (std::size_t i = 0; i < table.size(); ++i)
                if (table[i].problem != NameProblem{static_cast<std::uint8_t>(i)})
                    return false;
            return table.back().problem == lostExchange;
        }(),
        "the table is in the order of the problems");
    return table[static_cast<std::size_t>(problem)];
}

Predicate withProblem(const Predicate& among) { return among.with(Predicate::isTrue(NodeKey::problem)); }

} // namespace

std::string_view codeOf(NameProblem problem) { return wordsOf(problem).code; }

std::string_view messageOf(NameProblem problem) { return wordsOf(problem).message; }

std::string tooLongMessage(NameProblem problem, std::size_t length, std::size_t limit) {
    return fmt::format("{}: {} of {} {}", messageOf(problem), length, limit,
                       problem == tooManyBytes ? "bytes" : "characters");
}

std::string replacedMessage(FileStatus::Kind former, FileStatus::Kind present) {
    constexpr std::array<std::string_view, 4> names{"a file", "a folder", "a link", "a special file"};
    return fmt::format("It was {} when the list was read, and is {} now",
                       names.at(static_cast<std::size_t>(former)),
                       names.at(static_cast<std::size_t>(present)));
}

std::optional<ToldProblem> problemOf(StoreContext& context, RowId id) {
    const NodeRow row = context.row(id);
    const NameProblem problem = row.problem;
    if (problem == none)
        return std::nullopt;
    ToldProblem told{codeOf(problem), std::string(messageOf(problem))};
    if (problem == replaced) {
        const FileStatus::Kind present{static_cast<std::uint8_t>(row.problemDetail)};
        told.message = replacedMessage(row.kind, present);
    } else if (problem == tooManyBytes || problem == tooManyUnits) {
        const std::u16string name = context.finalName(id);
        const std::size_t bytes = text::toBytes(name).value_or(std::string()).size();
        told.message =
            tooLongMessage(problem, problem == tooManyUnits ? name.size() : bytes, row.problemDetail);
    }
    return told;
}

std::string_view problemTitle(StoreContext& context, RowId id) {
    return context.row(id).diff ? "Cannot be renamed" : "Left out";
}

std::vector<RowId> rowsWithProblems(StoreContext& context, const Predicate& among) {
    return context.fetch({FetchEntity::file, withProblem(among), {}, 0});
}

std::size_t problemCount(StoreContext& context, const Predicate& among) {
    return context.count(FetchEntity::file, withProblem(among));
}

} // namespace tavrin
