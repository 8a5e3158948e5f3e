#include "installation/Tools.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

namespace tavrin::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;

/// What bash offers for the last of these words of a command line, typed as they stand here.
std::vector<std::string> offered(const std::vector<std::string>& words) {
    std::string list;
    for (const std::string& word : words)
        list += quotedForShell(word) + ' ';
    const std::string script = fmt::format(
        "PATH={}:$PATH; compopt() {{ :; }}; source {}/Resources/completions/{}.bash; COMP_WORDS=({}); "
        "COMP_CWORD={}; _{}; printf '%s\\n' \"${{COMPREPLY[@]}}\"",
        quotedForShell(programFolder()), quotedForShell(TAVRIN_SOURCE_FOLDER), words.front(), list,
        words.size() - 1, words.front());
    return linesOf(outputOf({"bash", "-c", script}));
}

struct Offer {
    std::vector<std::string> words;
    std::vector<std::string> expected;
};

class BashCompletion : public testing::TestWithParam<Offer> {};

TEST_P(BashCompletion, Offers) {
    EXPECT_THAT(offered(GetParam().words), ElementsAreArray(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(
    All, BashCompletion,
    testing::Values(Offer{{"tvrn", "pre"}, {"preview", "presets"}}, Offer{{"tvrn", "--v"}, {"--version"}},
                    Offer{{"tvrn", "preview", "--f"}, {"--format"}}, Offer{{"tvrn", "rename", "--f"}, {""}},
                    Offer{{"tvrn", "rename", "--", "--q"}, {""}}, Offer{{"tvrn", "rename", "pict"}, {""}},
                    Offer{{"tvrn", "preview", "--format", ""}, {"0", "1", "2"}},
                    Offer{{"tvrn", "preview", "--store", ""}, {"memory", "file"}},
                    Offer{{"tvrn", "tags", "--"}, {"--json", "--help"}},
                    Offer{{"tvrn", "actions", "Make\\ low"}, {"Make\\ lowercase"}},
                    Offer{{"tvrn", "rename", "--action", "Make\\ low"}, {"Make\\ lowercase"}},
                    Offer{{"tvrn", "rename", "--action", "\"Make low"}, {"Make lowercase"}},
                    Offer{{"tvrn", "rename", "--action", "'Replace text'", "--set", "sea"}, {"searchTerm="}},
                    Offer{{"tvrn", "rename", "--action", "Add\\ to\\ end", "--action", "\"Replace text\"",
                           "--set", "sea"},
                          {"searchTerm="}},
                    Offer{{"tvrn", "rename", "--set", "sea"}, {""}},
                    Offer{{"tvrn", "rename", "--action", "Make\\ lowercase", "--set", "fragmentSelection",
                           "=", "2"},
                          {"2"}},
                    Offer{{"tvrn", "rename", "--action", "No\\ such", "--set", ""}, {""}},
                    Offer{{"tvrn", "rename", "--setting", "renameM"}, {"renameMode="}},
                    Offer{{"tvrn", "rename", "--setting", "renameMode", "="}, {""}},
                    Offer{{"tavrin", "--d"}, {"--droplet"}}, Offer{{"tavrin", "--", "--d"}, {""}}));

TEST(Completion, OffersWhatAParameterChoosesFrom) {
    EXPECT_THAT(
        offered({"tvrn", "rename", "--action", "Make\\ lowercase", "--set", "fragmentSelection", "="}),
        testing::UnorderedElementsAre("0", "1", "2", "3"));
}

TEST(Completion, OffersTheSavedPresets) {
    const TemporaryFolder data;
    data.write("Tavrin 9/Presets/My Own.tvrn8preset.plist", "");
    const Variable folder("XDG_DATA_HOME", data.path().c_str());
    EXPECT_THAT(offered({"tvrn", "rename", "--preset", ""}), Contains("My\\ Own"));
}

TEST(Completion, KnowsTheSameSettingsEverywhereAndTheProgramTakesThem) {
    const TemporaryFolder folder;
    const std::string file = folder.write("a");
    const std::string zsh = sourceFile("Resources/completions/_tvrn");
    const std::string fish = sourceFile("Resources/completions/tvrn.fish");
    const std::string manual = sourceFile("Resources/man/tvrn.1");
    const std::vector<std::string> keys = offered({"tvrn", "rename", "--setting", ""});
    EXPECT_GT(keys.size(), 10U);
    for (std::string key : keys) {
        SCOPED_TRACE(key);
        EXPECT_EQ(run({TVRN_PROGRAM, "preview", "--action", "Make lowercase", "--setting", key + "0", file})
                      .exitStatus,
                  0);
        key.pop_back();
        EXPECT_THAT(zsh, HasSubstr("'" + key + ":"));
        EXPECT_THAT(fish, HasSubstr(" " + key + " '"));
        EXPECT_THAT(manual, HasSubstr(key + " Pq"));
    }
}

TEST(Completion, KnowsTheOptionsOfEveryCommand) {
    const std::string zsh = sourceFile("Resources/completions/_tvrn");
    const std::string fish = sourceFile("Resources/completions/tvrn.fish");
    const std::string manual = sourceFile("Resources/man/tvrn.1");
    for (const char* command :
         {"preview", "rename", "history", "undo", "redo", "actions", "tags", "presets"}) {
        EXPECT_THAT(manual, HasSubstr(std::string("\n.Cm ") + command + "\n"));
        std::string help = outputOf({TVRN_PROGRAM, command, "--help"});
        help.resize(std::min(help.size(), help.find("Examples:")));
        const std::vector<std::string> inBash = offered({"tvrn", command, "--"});
        const std::regex option("(?:^|[ (])--([a-z]+(?:-[a-z]+)?)");
        const std::sregex_iterator end;
        int count = 0;
        for (std::sregex_iterator found(help.begin(), help.end(), option); found != end; ++found, ++count) {
            const std::string name = (*found)[1];
            SCOPED_TRACE(std::string(command) + " --" + name);
            EXPECT_THAT(inBash, Contains("--" + name));
            EXPECT_THAT(zsh, testing::ContainsRegex("--" + name + "(\\[|,|}|')"));
            EXPECT_THAT(fish, HasSubstr(" -l " + name + " "));
            EXPECT_THAT(manual, HasSubstr("Fl -" + name));
        }
        EXPECT_GT(count, 0);
    }
}

struct Shell {
    const char* name;
    std::vector<std::string> files;
};

class ShellSyntax : public testing::TestWithParam<Shell> {};

TEST_P(ShellSyntax, IsUnderstood) {
    const auto& [shell, files] = GetParam();
    if (!isThere(shell))
        GTEST_SKIP() << shell << " is not installed";
    for (const std::string& file : files) {
        const auto result = run({shell, "-n", sourcePath("Resources/completions/" + file)});
        EXPECT_EQ(result.exitStatus, 0) << file << result.output;
    }
}

INSTANTIATE_TEST_SUITE_P(All, ShellSyntax,
                         testing::Values(Shell{"bash", {"tvrn.bash", "tavrin.bash"}},
                                         Shell{"zsh", {"_tvrn", "_tavrin"}},
                                         Shell{"fish", {"tvrn.fish", "tavrin.fish"}}),
                         [](const auto& tested) { return tested.param.name; });

} // namespace
} // namespace tavrin::test
