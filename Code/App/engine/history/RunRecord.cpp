#include "engine/history/RunRecord.h"

#include "engine/renaming/NameOnDisk.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <ctime>
#include <iterator>
#include <utility>

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
constexpr std::array<std::string_view, 2> endWords = {"ended", "stopped"};

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

/// Appends a line, field by field.
class Printer {
  public:
    Printer(std::string_view word, std::string& line) : into(line) { into += word; }

    template <typename Number> void field(Number number) {
        into += '\t';
        fmt::format_to(std::back_inserter(into), "{}", number);
    }
    void field(const std::string& text) { appendEscaped(text, into); }
    void field(const std::optional<double>& time) {
        if (time)
            field(*time);
        else
            into += '\t';
    }
    void path(const std::string& path) { appendEscaped(path, into); }
    void name(const std::string& name) { appendEscaped(name, into); }
    void nameOrNone(const std::string& name) { appendEscaped(name, into); }
    template <typename Value, typename Words> void word(Value value, const Words& words) {
        appendEscaped(words[static_cast<std::size_t>(value)], into);
    }
    template <typename Rest, typename Print> void rest(const std::optional<Rest>& fields, Print print) {
        if (fields)
            print(*fields);
    }

  private:
    std::string& into;
};

/// Takes the same fields from a line, and says at the end whether all were what they had to be.
class Fields {
  public:
    Fields(std::string_view word, std::string_view line) : remaining(line) { isGood = next() == word; }

    template <typename Number> void field(Number& into) { isGood = isGood && parse(next(), into); }
    void field(std::string& into) { isGood = isGood && unescape(next(), into); }
    void field(std::optional<double>& into) {
        const std::string_view text = next();
        if (!text.empty())
            isGood = isGood && parse(text, into.emplace());
    }
    void path(std::string& into) {
        field(into);
        isGood = isGood && into.starts_with('/');
    }
    /// Must name something in a folder.
    void name(std::string& into) {
        field(into);
        isGood = isGood && nameOnDisk::isPossible(into);
    }
    void nameOrNone(std::string& into) {
        field(into);
        isGood = isGood && (into.empty() || nameOnDisk::isPossible(into));
    }
    /// One of these words; its place among them.
    template <typename Value, typename Words> void word(Value& into, const Words& words) {
        const auto found = std::ranges::find(words, next());
        isGood = isGood && found != words.end();
        into = static_cast<Value>(isGood ? found - words.begin() : 0);
    }
    /// What a line may end with.
    template <typename Rest, typename Take> void rest(std::optional<Rest>& into, Take take) {
        if (!isAtEnd)
            take(into.emplace());
    }
    [[nodiscard]] bool areGood() const { return isGood && isAtEnd; }

  private:
    std::string_view next() {
        if (isAtEnd) {
            isGood = false;
            return {};
        }
        const std::size_t tab = remaining.find('\t');
        const std::string_view field = remaining.substr(0, tab);
        isAtEnd = tab == std::string_view::npos;
        if (!isAtEnd)
            remaining.remove_prefix(tab + 1);
        return field;
    }
    template <typename Number> static bool parse(std::string_view field, Number& into) {
        const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), into);
        return error == std::errc() && end == field.data() + field.size();
    }

    std::string_view remaining;
    bool isAtEnd = false;
    bool isGood = false;
};

/// The word that a kind of line begins with, and its fields in their order, for printing and for reading.
template <typename Kind> struct LineOf;

template <> struct LineOf<RunHeading> {
    static constexpr std::string_view word = "run";
    static void fields(auto& line, auto& heading) {
        line.field(heading.time);
        line.field(heading.process);
        line.field(heading.bootId);
        line.field(heading.who);
        line.word(heading.what, kindNames);
        line.field(heading.of);
    }
};

template <> struct LineOf<Recipe> {
    static constexpr std::string_view word = "recipe";
    static void fields(auto& line, auto& recipe) { line.field(recipe.text); }
};

template <> struct LineOf<RecordedFolder> {
    static constexpr std::string_view word = "dir";
    static void fields(auto& line, auto& folder) {
        line.field(folder.number);
        line.field(folder.identity.device);
        line.field(folder.volume);
        line.field(folder.identity.inode);
        line.field(folder.birthTime);
        line.path(folder.path);
    }
};

template <> struct LineOf<RecordedItem> {
    static constexpr std::string_view word = "item";
    static void fields(auto& line, auto& item) {
        line.field(item.folder);
        line.field(item.inode);
        line.field(item.birthTime);
        line.word(item.kind, kindWords);
        line.name(item.oldName);
        line.name(item.newName);
        line.nameOrNone(item.standIn);
        line.rest(item.look, [&](auto& look) {
            line.field(look.size);
            line.field(look.modified);
        });
    }
};

template <> struct LineOf<RunEnd> {
    static constexpr std::string_view word = "done";
    static void fields(auto& line, auto& end) {
        line.field(end.changed);
        line.field(end.failed);
        line.field(end.time);
        line.word(end.wasStopped, endWords);
    }
};

template <> struct LineOf<Block> {
    static constexpr std::string_view word = "block";
    static void fields(auto& line, auto& block) {
        line.field(block.lines);
        line.field(block.checksum);
    }
};

template <> struct LineOf<Late> {
    static constexpr std::string_view word = "late";
    static void fields(auto& line, auto& late) {
        line.field(late.item);
        line.field(late.inode);
    }
};

template <> struct LineOf<NoFlag> {
    static constexpr std::string_view word = "noflag";
    static void fields(auto& line, auto& noFlag) { line.field(noFlag.device); }
};

} // namespace

std::string_view nameOf(RunKind kind) { return kindNames[static_cast<std::size_t>(kind)]; }

std::string timeNow() {
    const std::time_t now = std::time(nullptr);
    std::string text = fmt::format("{:%Y-%m-%dT%H:%M:%S%z}", fmt::localtime(now));
    text.insert(text.size() - 2, ":");
    return text;
}

template <typename Kind> void print(const Kind& what, std::string& into) {
    Printer line(LineOf<Kind>::word, into);
    LineOf<Kind>::fields(line, what);
}

template <typename Kind> std::optional<Kind> read(std::string_view line) {
    Fields fields(LineOf<Kind>::word, line);
    Kind what{};
    LineOf<Kind>::fields(fields, what);
    return fields.areGood() ? std::optional(std::move(what)) : std::nullopt;
}

template void print(const RunHeading&, std::string&);
template void print(const Recipe&, std::string&);
template void print(const RecordedFolder&, std::string&);
template void print(const RecordedItem&, std::string&);
template void print(const RunEnd&, std::string&);
template void print(const Block&, std::string&);
template void print(const Late&, std::string&);
template void print(const NoFlag&, std::string&);
template std::optional<RunHeading> read(std::string_view);
template std::optional<Recipe> read(std::string_view);
template std::optional<RecordedFolder> read(std::string_view);
template std::optional<RecordedItem> read(std::string_view);
template std::optional<RunEnd> read(std::string_view);
template std::optional<Block> read(std::string_view);
template std::optional<Late> read(std::string_view);
template std::optional<NoFlag> read(std::string_view);

} // namespace runLine

} // namespace tavrin
