
#include "common/Testing.h"

#include <regex>

// The rules of the house that no compiler keeps: which calls and libraries belong where, and how long a unit
// may grow.

namespace tavrin {

namespace {

constexpr std::size_t longestUnit = 700;

/// What only some units may have in their code.
struct Rule {
    std::vector<std::string_view> calls;     ///< as they stand in code, up to the parenthesis or beyond
    std::vector<std::string_view> allowedIn; ///< how the paths of these units begin
    std::string_view reason;
};

const std::vector<Rule> rules = {
    // The store's file takes its place by being renamed over the last one.
    {{"::rename(", "std::rename("},
     {"Code/App/platform/", "Code/App/store/paging/StoreFile.cpp"},
     "replaces files; go through the file system of platform"},
    {{"renameat(", "renameat2("}, {"Code/App/platform/"}, "go through the file system of platform"},
    {{"std::filesystem::rename("}, {}, "replaces files"},
    // A droplet that another replaces, all of whose content is its own.
    {{"std::filesystem::remove_all("},
     {"Code/App/documents/DropletBundle.cpp", "Code/App/documents/DropletBundleWriter.cpp"},
     "nothing here deletes trees"},
    {{"system(", "popen("}, {}, "starts a shell"},
    // Qt sets the locale of the user; the numbers are taken back out of it.
    {{"setlocale("}, {"Code/App/presentation/Appearance.cpp"}, "numbers are free of the locale"},
    {{"sprintf(", "strcpy(", "strcat("}, {}, "writes past its buffer"},
    {{"sleep(", "usleep("}, {}, "wait for what is to happen"},
    // Nothing tells of what another process is about to do.
    {{"sleep_for("},
     {"Code/App/platform/propertylists/DefaultsFile.cpp", "Code/App/presentation/start/SocketLink.cpp"},
     "wait for what is to happen"},
    {{".detach()"}, {}, "a thread is waited for"},
    {{"processEvents("}, {}, "no nested event loops"},
    {{"#include <unicode/", "#include \"support/text/TextIcu.h\""},
     {"Code/App/support/"},
     "stays hidden in its room"},
    {{"#include <sqlite3.h"}, {"Code/App/store/"}, "stays hidden in its room"},
    {{"#include <expat.h", "#include <exiv2/"}, {"Code/App/platform/"}, "stays hidden in its room"},
};

/// Whether a line makes the call outside of comments and quotation marks: not one of a longer name, nor one
/// of a member with the name of a function.
bool makesCall(std::string line, std::string_view call) {
    if (line.find(call) == std::string::npos)
        return false;
    static const std::regex noCode(R"re(//.*|/\*.*?\*/|"(\\.|[^"\\])*"|'(\\.|[^'\\])')re");
    if (!line.starts_with("#include"))
        line = std::regex_replace(line, noCode, "");
    const auto isIn = [](char c, std::string_view more) {
        return std::isalnum(static_cast<unsigned char>(c)) || more.find(c) != std::string_view::npos;
    };
    for (std::size_t at = line.find(call); at != std::string::npos; at = line.find(call, at + 1))
        if (at == 0 || call.front() == '.' || !isIn(line[at - 1], isIn(call.front(), "_") ? "_.>" : "_"))
            return true;
    return false;
}

/// What the unit at a path, from the root of the project, does against the rules, by the number of the line.
std::map<std::size_t, std::string> violations(const std::string& path, std::istream&& text) {
    std::map<std::size_t, std::string> found;
    const bool isHeader = path.ends_with(".h");
    const auto isAllowed = [&](const Rule& rule) {
        const bool isLibrary = rule.calls.front().starts_with("#include");
        return !(isLibrary && isHeader && !path.ends_with("/TextIcu.h")) &&
               std::ranges::any_of(rule.allowedIn, [&](auto start) { return path.starts_with(start); });
    };
    std::size_t count = 0;
    bool isGuarded = !isHeader;
    for (std::string line; std::getline(text, line);) {
        ++count;
        isGuarded = isGuarded || line == "#pragma once";
        for (const Rule& rule : rules)
            for (const std::string_view call : rule.calls)
                if (makesCall(line, call) && !isAllowed(rule))
                    found[count] = fmt::format("{}: {}", call, rule.reason);
    }
    if (count > longestUnit)
        found[count] = "the unit is too long";
    if (!isGuarded)
        found[1] = "no #pragma once";
    return found;
}

TEST(Layout, TheSourcesKeepTheRulesOfTheHouse) {
    const std::filesystem::path project = TAVRIN_SOURCE_FOLDER;
    int count = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(project / "Code")) {
        const std::string path = entry.path().lexically_relative(project).string();
        if (!path.ends_with(".h") && !path.ends_with(".cpp"))
            continue;
        EXPECT_THAT(violations(path, std::ifstream(entry.path())), testing::IsEmpty()) << path;
        ++count;
    }
    EXPECT_GT(count, 50);
}

TEST(Layout, UnitsThatBreakARuleOrComeCloseToItAreJudged) {
    const std::string libraries = "#pragma once\n#include <unicode/utypes.h>\n#include <sqlite3.h>\n";
    const struct {
        std::string path, text;
        std::vector<std::size_t> expected; ///< the numbers of the lines that break a rule
    } plants[] = {
        {"store/A.cpp", "#include <sqlite3.h>\n// #include <expat.h>\n", {}},
        {"store/A.h", "int a;\nint b;\n", {1}},
        {"store/A.h", libraries, {2, 3}},
        {"support/text/TextIcu.h", libraries, {3}},
        {"engine/A.cpp", "#include <sqlite3.h>\nint a = ::rename(b, c);\n\nworker.detach();\n", {1, 2, 4}},
        {"engine/A.cpp",
         "files.rename(b, c); // rename(b, c)\nlog(\"::rename(\\\"b)\", 'x');\nFiles::rename(b);\n"
         "unrenameat(b);\nworkers.detach(b);\nfiles->system(b);\na /* system(b) */;\n",
         {}},
        {"platform/A.cpp", "int a = ::rename(b, c);\nstd::filesystem::rename(b, c);\n", {2}},
        {"engine/A.cpp", std::string(700, '\n'), {}},
        {"engine/A.cpp", std::string(701, '\n'), {701}},
    };
    for (const auto& [path, text, expected] : plants) {
        std::vector<std::size_t> lines;
        for (const auto& [line, what] : violations("Code/App/" + path, std::istringstream(text)))
            lines.push_back(line);
        EXPECT_EQ(lines, expected) << path << '\n' << text;
    }
}

} // namespace

} // namespace tavrin
