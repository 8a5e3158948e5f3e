#include "engine/naming/NameProblems.h"

#include "engine/renaming/NameOnDisk.h"
#include "store/contexts/StoreContext.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

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
    Words{pathTooLong, "too-long", "Path too long"},
    Words{lockedByFlag, "read-only", "It is locked against changes"},
};

const Words& wordsOf(NameProblem problem) {
    static_assert(
        [] {
            for (std::size_t i = 0; i < table.size(); ++i)
                if (table[i].problem != NameProblem{static_cast<std::uint8_t>(i)})
                    return false;
            return table.back().problem == lockedByFlag;
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
                       problem == tooManyUnits ? "characters" : "bytes");
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
    } else if (problem == pathTooLong) {
        told.message = tooLongMessage(problem, row.problemDetail, longestPath);
    }
    return told;
}

namespace {

std::string grouped(std::size_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t at = digits.size(); at > 3; at -= 3)
        digits.insert(at - 3, 1, ',');
    return digits;
}

/// The name of the item that wants or holds the same name, where it is still known.
std::string rivalOf(StoreContext& context, RowId id, std::uint16_t detail) {
    const auto step = static_cast<std::int16_t>(detail);
    const RowId other = id + static_cast<RowId>(step);
    return step != rowTooFar && context.exists(other) ? text::toUtf8(context.name(other)) : std::string();
}

std::string firstForeignSign(const std::string& name) {
    const auto sign = std::ranges::find_if(name, [](char c) {
        return static_cast<unsigned char>(c) < 0x20 ||
               nameOnDisk::foreignSigns.find(c) != std::string_view::npos;
    });
    if (sign == name.end())
        return {};
    return *sign >= 0x20 ? std::string(1, *sign) : fmt::format("\\x{:02x}", static_cast<unsigned>(*sign));
}

std::size_t bytesIn(const std::u16string& name) { return text::toBytes(name).value_or(std::string()).size(); }

ProblemNote noteOfProblem(StoreContext& context, RowId id, const NodeRow& row) {
    switch (row.problem) {
    case none:
        return {};
    case empty:
        return {"the name would be empty"};
    case holdsNul:
        return {"holds a character that cannot be written"};
    case standsForFolder:
        return {"“.” and “..” cannot be names"};
    case cutCharacter:
        return {"cuts a character in two"};
    case tooManyBytes:
        return {"%1 bytes, %2 fit", {grouped(bytesIn(context.finalName(id))), grouped(row.problemDetail)}};
    case tooManyUnits:
        return {"%1 characters, %2 fit", {grouped(context.finalName(id).size()), grouped(row.problemDetail)}};
    case pathTooLong:
        return {"the path would have %1 bytes, %2 fit", {grouped(row.problemDetail), grouped(longestPath)}};
    case foreignCharacter:
        return {"“%1” is not possible on this medium",
                {firstForeignSign(text::toUtf8(context.finalName(id)))}};
    case taken:
        if (row.problemDetail == 0)
            return {"taken by a file not in the list"};
        if (std::string holder = rivalOf(context, id, row.problemDetail); !holder.empty())
            return {"taken by “%1”, which keeps its name", {std::move(holder)}};
        return {"taken by an item that keeps its name"};
    case conflict:
        if (std::string rival = rivalOf(context, id, row.problemDetail); !rival.empty())
            return {"same as “%1”", {std::move(rival)}};
        return {"same as another item"};
    case lockedFolder:
        return {"the folder may not be written"};
    case lockedItem:
        return {"only its owner may rename it here"};
    case lockedByFlag:
        return {"the file is locked"};
    case readOnlyVolume:
        return {"the medium is read-only"};
    case link:
        return {"symbolic links are not renamed"};
    case gone:
        return {"no longer there"};
    case replaced:
        return {"replaced by an item of another kind"};
    case folderReplaced:
        return {"the folder has been replaced by another"};
    case lostExchange:
        return {"it cannot exchange names with an item that is gone"};
    }
    return {};
}

} // namespace

ProblemNote noteOf(StoreContext& context, RowId id) {
    const NodeRow row = context.row(id);
    if (row.problem != none)
        return noteOfProblem(context, id, row);
    if (row.diff && context.finalName(id).find(u'/') != std::u16string::npos)
        return {"“/” becomes “:” on the disk", {}, true};
    return {};
}

/// Values that are texts stand alone, so that what looks like a place in one is none.
std::string ProblemNote::sentence() const {
    std::string result(form);
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::string place = fmt::format("%{}", i + 1);
        if (const std::size_t at = result.find(place); at != std::string::npos)
            result.replace(at, place.size(), values[i]);
    }
    return result;
}

std::string reasonInFull(StoreContext& context, RowId id) {
    std::string message = problemOf(context, id).value_or(ToldProblem()).message;
    const NameProblem problem = context.row(id).problem;
    if (problem != taken && problem != conflict && problem != foreignCharacter)
        return message;
    return fmt::format("{} ({})", message, noteOf(context, id).sentence());
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
