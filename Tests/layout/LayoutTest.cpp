#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>

// The rules of the house that no compiler keeps: which calls and libraries belong where, and how long a unit
// may grow.

namespace tavrin {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::size_t longestUnit = 700;

/// What only some units may have in their code.
struct Rule {
    std::string_view call;                   ///< as it stands in code, up to the parenthesis or beyond
    std::vector<std::string_view> allowedIn; ///< how the paths of these units begin
    std::string_view reason;
};

const std::vector<Rule>& rules() {
    static const std::vector<std::string_view> platform = {"Code/App/platform/"};
    // The store's file takes its place by being renamed over the last one.
    static const std::vector<std::string_view> storeToo = {"Code/App/platform/",
                                                           "Code/App/store/paging/StoreFile.cpp"};
    static const std::vector<Rule> all = {
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
        {"setlocale(", {"Code/App/presentation/Appearance.cpp"}, "numbers are free of the locale"},
        {"sprintf(", {}, "writes past its buffer"},
        {"strcpy(", {}, "writes past its buffer"},
        {"strcat(", {}, "writes past its buffer"},
        {"sleep(", {}, "wait for what is to happen"},
        {"usleep(", {}, "wait for what is to happen"},
        // Nothing tells of what another process is about to do.
        {"sleep_for(",
         {"Code/App/platform/propertylists/DefaultsFile.cpp", "Code/App/presentation/start/SocketLink.cpp"},
         "wait for what is to happen"},
        {".detach()", {}, "a thread is waited for"},
        {"processEvents(", {}, "no nested event loops"},
        {"#include <unicode/", {"Code/App/support/"}, "stays hidden in its room"},
        {"#include \"support/text/TextIcu.h\"", {"Code/App/support/"}, "stays hidden in its room"},
        {"#include <sqlite3.h", {"Code/App/store/"}, "stays hidden in its room"},
        {"#include <expat.h", {"Code/App/platform/"}, "stays hidden in its room"},
        {"#include <exiv2/", {"Code/App/platform/"}, "stays hidden in its room"},
    };
    return all;
}

bool isWordCharacter(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }

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

/// What the unit at a path, from the root of the project, does against the rules, one line each.
std::vector<std::string> violations(const std::string& path, const std::string& text) {
    std::vector<std::string> found;
    const std::vector<std::string> lines = codeLines(text);
    const bool isHeader = path.ends_with(".h");
    const auto report = [&](std::size_t line, std::string_view what) {
        found.push_back(fmt::format("{}:{}: {}", path, line, what));
    };
    for (const Rule& rule : rules()) {
        const bool isHidden = rule.call.starts_with("#include") && isHeader && !path.ends_with("/TextIcu.h");
        const bool isAllowed = !isHidden && std::ranges::any_of(rule.allowedIn, [&](std::string_view start) {
            return path.starts_with(start);
        });
        for (std::size_t i = 0; i < lines.size() && !isAllowed; ++i)
            if (makesCall(lines[i], rule.call))
                report(i + 1, fmt::format("{}: {}", rule.call, rule.reason));
    }
    if (lines.size() > longestUnit + 1)
        report(lines.size(), "the unit is too long");
    if (isHeader && std::ranges::find(lines, "#pragma once") == lines.end())
        report(1, "no #pragma once");
    return found;
}

TEST(Layout, TheSourcesKeepTheRulesOfTheHouse) {
    constexpr std::string_view project = TAVRIN_SOURCE_FOLDER "/";
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(TAVRIN_SOURCE_FOLDER "/Code")) {
        const std::string path = entry.path().string();
        if (!path.ends_with(".h") && !path.ends_with(".cpp"))
            continue;
        std::ifstream file(path, std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(file), {}};
        EXPECT_THAT(violations(path.substr(project.size()), text), IsEmpty());
        ++count;
    }
    EXPECT_GT(count, 50u);
}

TEST(Layout, UnitsThatBreakARuleOrComeCloseToItAreJudged) {
    const std::string include = "#pragma once\n#include <unicode/utypes.h>\n";
    const struct {
        std::string path;
        std::string text;
        std::string expected; ///< empty where nothing is wrong
    } plants[] = {
        {"store/A.cpp", "#include <sqlite3.h>\n// #include <expat.h>\n", ""},
        {"store/A.h", "int a;\n", ":1: no #pragma once"},
        {"store/A.h", "#pragma once\n#include <sqlite3.h>\n",
         ":2: #include <sqlite3.h: stays hidden in its room"},
        {"engine/A.cpp", "#include <sqlite3.h>\n", ":1: #include <sqlite3.h: stays hidden in its room"},
        {"support/text/TextIcu.h", include, ""},
        {"support/text/Text.h", include, ":2: #include <unicode/: stays hidden in its room"},
        {"engine/A.cpp", "int a = ::rename(b, c);\n",
         ":1: ::rename(: replaces files; go through the file system of platform"},
        {"engine/A.cpp",
         "files.rename(b, c); // rename(b, c)\nlog(\"rename(b)\", 'x');\nFiles::rename(b);\n"
         "unrenameat(b);\nworkers.detach(b);\n/* a\nsystem(b) */\n",
         ""},
        {"platform/A.cpp", "int a = ::rename(b, c);\n", ""},
        {"platform/A.cpp", "std::filesystem::rename(b, c);\n",
         ":1: std::filesystem::rename(: replaces files"},
        {"engine/A.cpp", "\nworker.detach();\n", ":2: .detach(): a thread is waited for"},
        {"engine/A.cpp", std::string(700, '\n'), ""},
        {"engine/A.cpp", std::string(701, '\n'), ":702: the unit is too long"},
    };
    for (const auto& [place, text, expected] : plants) {
        const std::string path = "Code/App/" + place;
        if (expected.empty())
            EXPECT_THAT(violations(path, text), IsEmpty());
        else
            EXPECT_THAT(violations(path, text), ElementsAre(path + expected));
    }
}

} // namespace

} // namespace tavrin
