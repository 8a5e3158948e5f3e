#include "engine/history/RunRecord.h"

#include "engine/renaming/NameOnDisk.h"
#include "platform/files/FileStatus.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <array>
#include <charconv>
#include <ctime>
#include <iterator>

namespace tavrin {

std::optional<double> RunHeading::began() const {
    std::tm parts{};
    const char* const end = ::strptime(time.c_str(), "%Y-%m-%dT%H:%M:%S%z", &parts);
    if (end == nullptr || *end != '\0')
        return std::nullopt;
    const long offset = parts.tm_gmtoff;
    return static_cast<double>(::timegm(&parts) - offset - referenceDateSince1970);
}

namespace runLine {

namespace {

constexpr std::array<std::string_view, 4> kindWords = {"f", "d", "l",
                                                       "o"}; // in the order of FileStatus::Kind
constexpr std::array<std::string_view, 3> kindNames = {"rename", "undo", "redo"};
constexpr std::string_view noFlagWord = "noflag";

void appendEscaped(std::string_view bytes, std::string& into) {
    into += '\t';
    for (const char c : bytes) {
        if (c == '\t')
            into += "\\t";
        else if (c == '\n')
            into += "\\n";
        else if (c == '\\')
            into += "\\\\";
        else
            into += c;
    }
}

template <typename Number> void appendNumber(Number number, std::string& into) {
    into += '\t';
    fmt::format_to(std::back_inserter(into), "{}", number);
}

void appendTime(const std::optional<double>& time, std::string& into) {
    if (time)
        appendNumber(*time, into);
    else
        into += '\t';
}

bool unescape(std::string_view field, std::string& into) {
    into.clear();
    for (std::size_t i = 0; i < field.size(); ++i) {
        if (field[i] != '\\') {
            into += field[i];
            continue;
        }
        if (++i == field.size())
            return false;
        if (field[i] != 't' && field[i] != 'n' && field[i] != '\\')
            return false;
        into += field[i] == 't' ? '\t' : field[i] == 'n' ? '\n' : '\\';
    }
    return into.find('\0') == std::string::npos;
}

/// The fields of a line one after the other; says at the end whether all were what they had to be.
class Fields {
  public:
    Fields(std::string_view line, std::string_view word) : rest(line) { isGood = next() == word; }

    template <typename Number> void take(Number& into) { isGood = isGood && parse(next(), into); }
    void take(std::string& into) { isGood = isGood && unescape(next(), into); }
    void take(std::optional<double>& into) {
        const std::string_view field = next();
        if (!field.empty())
            isGood = isGood && parse(field, into.emplace());
    }
    /// One of these words; its place among them.
    template <typename Words> std::size_t takeWord(const Words& words) {
        const std::string_view field = next();
        for (std::size_t i = 0; i < words.size(); ++i) {
            if (field == words[i])
                return i;
        }
        isGood = false;
        return 0;
    }
    void takeName(std::string& into) {
        take(into);
        isGood = isGood && NameOnDisk::isPossible(into);
    }
    [[nodiscard]] bool hasMore() const { return !isAtEnd; }
    [[nodiscard]] bool areGood() const { return isGood && isAtEnd; }

  private:
    std::string_view next() {
        if (isAtEnd) {
            isGood = false;
            return {};
        }
        const std::size_t tab = rest.find('\t');
        const std::string_view field = rest.substr(0, tab);
        isAtEnd = tab == std::string_view::npos;
        if (!isAtEnd)
            rest.remove_prefix(tab + 1);
        return field;
    }
    template <typename Number> static bool parse(std::string_view field, Number& into) {
        const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), into);
        return error == std::errc() && end == field.data() + field.size();
    }

    std::string_view rest;
    bool isAtEnd = false;
    bool isGood = false;
};

} // namespace

std::string_view nameOf(RunKind kind) { return kindNames[static_cast<std::size_t>(kind)]; }

std::string timeNow() {
    const std::time_t now = std::time(nullptr);
    std::string text = fmt::format("{:%Y-%m-%dT%H:%M:%S%z}", fmt::localtime(now));
    text.insert(text.size() - 2, ":");
    return text;
}

void print(const RunHeading& heading, std::string& into) {
    into += "run";
    appendEscaped(heading.time, into);
    appendNumber(heading.process, into);
    appendEscaped(heading.bootId, into);
    appendEscaped(heading.who, into);
    appendEscaped(nameOf(heading.what), into);
    appendEscaped(heading.of, into);
}

void printRecipe(std::string_view recipe, std::string& into) {
    into += "recipe";
    appendEscaped(recipe, into);
}

void print(const RecordedFolder& folder, std::string& into) {
    into += "dir";
    appendNumber(folder.number, into);
    appendNumber(folder.identity.device, into);
    appendNumber(folder.volume, into);
    appendNumber(folder.identity.inode, into);
    appendTime(folder.birthTime, into);
    appendEscaped(folder.path, into);
}

void print(const RecordedItem& item, std::string& into) {
    into += "item";
    appendNumber(item.folder, into);
    appendNumber(item.inode, into);
    appendTime(item.birthTime, into);
    appendEscaped(kindWords[static_cast<std::size_t>(item.kind)], into);
    appendEscaped(item.oldName, into);
    appendEscaped(item.newName, into);
    appendEscaped(item.standIn, into);
    if (item.look) {
        appendNumber(item.look->size, into);
        appendNumber(item.look->modified, into);
    }
}

void print(const RunEnd& end, std::string& into) {
    into += "done";
    appendNumber(end.changed, into);
    appendNumber(end.failed, into);
    appendEscaped(end.time, into);
    appendEscaped(end.wasStopped ? "stopped" : "ended", into);
}

void printBlock(std::size_t lines, std::uint32_t checksum, std::string& into) {
    into += "block";
    appendNumber(lines, into);
    appendNumber(checksum, into);
}

void printNoFlag(std::uint32_t device, std::string& into) {
    into += noFlagWord;
    appendNumber(device, into);
}

void printLate(std::size_t item, std::uint64_t inode, std::string& into) {
    into += "late";
    appendNumber(item, into);
    appendNumber(inode, into);
}

std::optional<RunHeading> heading(std::string_view line) {
    Fields fields(line, "run");
    RunHeading heading;
    fields.take(heading.time);
    fields.take(heading.process);
    fields.take(heading.bootId);
    fields.take(heading.who);
    heading.what = static_cast<RunKind>(fields.takeWord(kindNames));
    fields.take(heading.of);
    return fields.areGood() ? std::optional(heading) : std::nullopt;
}

std::optional<RecordedFolder> folder(std::string_view line) {
    Fields fields(line, "dir");
    RecordedFolder folder;
    fields.take(folder.number);
    fields.take(folder.identity.device);
    fields.take(folder.volume);
    fields.take(folder.identity.inode);
    fields.take(folder.birthTime);
    fields.take(folder.path);
    if (!folder.path.starts_with('/'))
        return std::nullopt;
    return fields.areGood() ? std::optional(std::move(folder)) : std::nullopt;
}

std::optional<RecordedItem> item(std::string_view line) {
    Fields fields(line, "item");
    RecordedItem item;
    fields.take(item.folder);
    fields.take(item.inode);
    fields.take(item.birthTime);
    item.kind = static_cast<FileStatus::Kind>(fields.takeWord(kindWords));
    fields.takeName(item.oldName);
    fields.takeName(item.newName);
    fields.take(item.standIn);
    if (!item.standIn.empty() && !NameOnDisk::isPossible(item.standIn))
        return std::nullopt;
    if (fields.hasMore()) {
        RecordedItem::Look& look = item.look.emplace();
        fields.take(look.size);
        fields.take(look.modified);
    }
    return fields.areGood() ? std::optional(std::move(item)) : std::nullopt;
}

std::optional<RunEnd> end(std::string_view line) {
    Fields fields(line, "done");
    RunEnd end;
    fields.take(end.changed);
    fields.take(end.failed);
    fields.take(end.time);
    end.wasStopped = fields.takeWord(std::array<std::string_view, 2>{"ended", "stopped"}) == 1;
    return fields.areGood() ? std::optional(end) : std::nullopt;
}

std::optional<Block> block(std::string_view line) {
    Fields fields(line, "block");
    Block block{};
    fields.take(block.lines);
    fields.take(block.checksum);
    return fields.areGood() ? std::optional(block) : std::nullopt;
}

std::optional<Late> late(std::string_view line) {
    Fields fields(line, "late");
    Late late{};
    fields.take(late.item);
    fields.take(late.inode);
    return fields.areGood() ? std::optional(late) : std::nullopt;
}

std::optional<std::uint32_t> noFlag(std::string_view line) {
    Fields fields(line, noFlagWord);
    std::uint32_t device = 0;
    fields.take(device);
    return fields.areGood() ? std::optional(device) : std::nullopt;
}

} // namespace runLine

} // namespace tavrin
