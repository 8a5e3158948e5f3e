#include "layout/LayoutRules.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <string_view>

namespace tavrin {

namespace {

constexpr std::size_t longestUnit = 700;

/// Each room sees those in front of it. The two front ends do not see each other.
constexpr std::array<std::string_view, 10> rooms = {"support",      "platform",  "store",  "tags",
                                                    "actions",      "documents", "engine", "shell",
                                                    "presentation", "Command"};
constexpr std::array<std::string_view, 4> hiddenLibraries = {"unicode/", "sqlite3.h", "expat.h", "exiv2/"};

/// A call that only some units may make.
struct CallRule {
    std::string_view call;                   ///< as it stands in code, up to the parenthesis or beyond
    std::vector<std::string_view> allowedIn; ///< how the paths of these units begin
    std::string_view reason;
};

const std::vector<CallRule>& callRules() {
    static const std::vector<std::string_view> platform = {"Code/App/platform/"};
    // The store's file takes its place by being renamed over the last one.
    static const std::vector<std::string_view> storeToo = {"Code/App/platform/",
                                                           "Code/App/store/paging/StoreFile.cpp"};
    static const std::vector<CallRule> rules = {
        {"::rename(", storeToo, "replaces files; go through the file system of platform"},
        {"std::rename(", storeToo, "replaces files; go through the file system of platform"},
        {"renameat(", platform, "replaces files; go through the file system of platform"},
        {"renameat2(", platform, "go through the file system of platform"},
        {"std::filesystem::rename(", {}, "replaces files"},
        // A droplet that another replaces, all of whose content is its own.
        {"std::filesystem::remove_all(",
         {"Code/App/documents/DropletBundle.cpp", "Code/App/documents/DropletBundleWriter.cpp"},
         "nothing here deletes trees"},
        {"system(", {}, "starts a shell"},
        {"popen(", {}, "starts a shell"},
        // Qt sets the locale of the user; the numbers are taken back out of it.
        {"setlocale(",
         {"Code/App/presentation/start/ApplicationSetup.cpp"},
         "numbers are free of the locale"},
        {"sprintf(", {}, "writes past its buffer"},
        {"strcpy(", {}, "writes past its buffer"},
        {"strcat(", {}, "writes past its buffer"},
        {"sleep(", {}, "wait for what is to happen"},
        {"usleep(", {}, "wait for what is to happen"},
        // Nothing tells of what another process is about to do.
        {"sleep_for(",
         {"Code/App/platform/files/FileLock.cpp", "Code/App/presentation/start/SocketLink.cpp"},
         "wait for what is to happen"},
        {".detach()", {}, "a thread is waited for"},
        {"processEvents(", {}, "no nested event loops"},
    };
    return rules;
}

bool isWordCharacter(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }

bool startsWithAny(std::string_view text, const auto& starts) {
    return std::ranges::any_of(starts, [&](std::string_view start) { return text.starts_with(start); });
}

/// The room that a path lies in, as an index into `rooms`.
std::optional<std::size_t> roomOf(std::string_view path) {
    constexpr std::string_view app = "Code/App/";
    if (path.starts_with(app))
        path.remove_prefix(app.size());
    else if (path.starts_with("Code/"))
        path.remove_prefix(5);
    const auto room = std::ranges::find(rooms, path.substr(0, path.find('/')));
    if (room == rooms.end())
        return std::nullopt;
    return static_cast<std::size_t>(room - rooms.begin());
}

bool sees(std::size_t from, std::size_t to) {
    return rooms[from] == "Command" ? rooms[to] != "presentation" : to <= from;
}

/// The code of a unit by line, without comments and without what stands between quotation marks; the target
/// of an #include stays.
std::vector<std::string> codeLines(const std::string& text) {
    std::vector<std::string> lines(1);
    char quote = 0;
    bool inBlockComment = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::string& line = lines.back();
        const char c = text[i];
        if (c == '\n') {
            quote = 0;
            lines.emplace_back();
        } else if (inBlockComment) {
            inBlockComment = text.compare(i - 1, 2, "*/") != 0;
        } else if (quote != 0) {
            if (c == '\\')
                ++i;
            else if (c == quote) {
                line += c;
                quote = 0;
            }
        } else if (text.compare(i, 2, "//") == 0) {
            i = std::min(text.find('\n', i), text.size()) - 1;
        } else if (text.compare(i, 2, "/*") == 0) {
            inBlockComment = true;
            i += 2;
        } else {
            const bool opens = (c == '"' && !line.starts_with("#include")) ||
                               (c == '\'' && (line.empty() || !isWordCharacter(line.back())));
            quote = opens ? c : char{0};
            line += c;
        }
    }
    return lines;
}

/// Whether a line makes the call: not one of a longer name, nor one of a member with the name of a function.
bool makesCall(const std::string& line, std::string_view call) {
    for (std::size_t at = line.find(call); at != std::string::npos; at = line.find(call, at + 1)) {
        const char before = at == 0 ? ' ' : line[at - 1];
        const bool isPartOfName = call.front() != '.' && isWordCharacter(before);
        const bool isMember = isWordCharacter(call.front()) && (before == '.' || before == '>');
        if (!isPartOfName && !isMember)
            return true;
    }
    return false;
}

struct Include {
    std::size_t line;
    std::string target;
    bool isQuoted;
};

struct Unit {
    std::string path;
    std::size_t room;
    std::vector<std::string> lines;
    std::vector<Include> includes;

    [[nodiscard]] bool isHeader() const { return path.ends_with(".h"); }
    /// As others include it.
    [[nodiscard]] std::string name() const { return path.substr(std::string_view("Code/App/").size()); }
};

std::vector<Include> includesOf(const std::vector<std::string>& lines) {
    std::vector<Include> includes;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::string& line = lines[i];
        if (!line.starts_with("#include"))
            continue;
        const std::size_t start = line.find_first_of("<\"");
        const std::size_t end = line.find_first_of(">\"", start + 1);
        if (start != std::string::npos && end != std::string::npos)
            includes.push_back({i + 1, line.substr(start + 1, end - start - 1), line[start] == '"'});
    }
    return includes;
}

class LayoutCheck {
  public:
    explicit LayoutCheck(const std::vector<SourceUnit>& sources) {
        for (const SourceUnit& source : sources) {
            const std::optional<std::size_t> room = roomOf(source.path);
            if (!room) {
                found.push_back(fmt::format("{}:1: lies in no room", source.path));
                continue;
            }
            std::vector<std::string> lines = codeLines(source.text);
            std::vector<Include> includes = includesOf(lines);
            units.push_back({source.path, *room, std::move(lines), std::move(includes)});
        }
    }

    std::vector<std::string> run() {
        for (const Unit& unit : units)
            noteHiddenHeader(unit);
        for (const Unit& unit : units) {
            for (const Include& include : unit.includes)
                checkInclude(unit, include);
            checkCalls(unit);
            if (unit.lines.size() > longestUnit + 1)
                report(unit, unit.lines.size(), "the unit is too long");
            if (unit.isHeader() && std::ranges::find(unit.lines, "#pragma once") == unit.lines.end())
                report(unit, 1, "no #pragma once");
        }
        return found;
    }

  private:
    void report(const Unit& unit, std::size_t line, const std::string& what) {
        found.push_back(fmt::format("{}:{}: {}", unit.path, line, what));
    }

    /// A header that shows a hidden library is the private affair of its room's source files.
    void noteHiddenHeader(const Unit& unit) {
        const bool shows = std::ranges::any_of(unit.includes, [](const Include& include) {
            return !include.isQuoted && startsWithAny(include.target, hiddenLibraries);
        });
        if (shows && unit.isHeader())
            hiddenHeaders.emplace(unit.name(), unit.room);
    }

    void checkInclude(const Unit& unit, const Include& include) {
        if (!include.isQuoted) {
            const bool isQt = include.target.size() > 1 && include.target[0] == 'Q' &&
                              std::isupper(static_cast<unsigned char>(include.target[1]));
            if ((isQt || include.target.starts_with("Qt")) && rooms[unit.room] != "presentation")
                report(unit, include.line, "Qt outside the presentation");
            return;
        }
        const std::optional<std::size_t> room =
            include.target.find('/') == std::string::npos ? std::nullopt : roomOf(include.target);
        if (room && !sees(unit.room, *room))
            report(unit, include.line, fmt::format("{} includes {}", rooms[unit.room], include.target));
        if (!room && rooms[unit.room] != "Command")
            report(unit, include.line, fmt::format("{} is not named by its room", include.target));
        const auto hidden = hiddenHeaders.find(include.target);
        if (hidden != hiddenHeaders.end() && (unit.isHeader() || hidden->second != unit.room))
            report(unit, include.line, fmt::format("{} shows a library that stays hidden", include.target));
    }

    void checkCalls(const Unit& unit) {
        for (const CallRule& rule : callRules()) {
            if (startsWithAny(unit.path, rule.allowedIn))
                continue;
            for (std::size_t i = 0; i < unit.lines.size(); ++i) {
                if (makesCall(unit.lines[i], rule.call))
                    report(unit, i + 1, fmt::format("{}: {}", rule.call, rule.reason));
            }
        }
    }

    std::vector<Unit> units;
    std::map<std::string, std::size_t> hiddenHeaders; ///< and the room of each
    std::vector<std::string> found;
};

} // namespace

std::vector<SourceUnit> readSourceUnits(const std::string& projectFolder) {
    std::vector<SourceUnit> units;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(projectFolder + "/Code")) {
        const std::string path = entry.path().string();
        if (!path.ends_with(".h") && !path.ends_with(".cpp"))
            continue;
        std::ifstream file(path, std::ios::binary);
        units.push_back({path.substr(projectFolder.size() + 1), {std::istreambuf_iterator<char>(file), {}}});
    }
    std::ranges::sort(units, {}, &SourceUnit::path);
    return units;
}

std::vector<std::string> layoutViolations(const std::vector<SourceUnit>& units) {
    return LayoutCheck(units).run();
}

} // namespace tavrin
