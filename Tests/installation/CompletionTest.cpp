#include "installation/Tools.h"

#include <regex>

namespace tavrin::test {
namespace {

using testing::Contains;
using testing::HasSubstr;

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

TEST(Completion, OffersWhatCanFollow) {
    const TemporaryFolder data;
    data.write("Tavrin 9/Presets/My Own.tvrn8preset.plist", "");
    const Variable folder("XDG_DATA_HOME", data.path().c_str());
    // Words of the command line, and what is offered for the last of them.
    const std::pair<std::string, std::string> cases[] = {
        {"tvrn|pre", "preview|presets"},
        {"tvrn|--v", "--version"},
        {"tvrn|preview|--f", "--format"},
        {"tvrn|rename|--f", ""},
        {"tvrn|rename|--|--q", ""},
        {"tvrn|rename|pict", ""},
        {"tvrn|preview|--format|", "0|1|2"},
        {"tvrn|preview|--store|", "memory|file"},
        {"tvrn|tags|--", "--json|--help"},
        {"tvrn|actions|Make\\ low", "Make\\ lowercase"},
        {"tvrn|rename|--preset|", "My\\ Own"},
        {"tvrn|rename|--action|Make\\ low", "Make\\ lowercase"},
        {"tvrn|rename|--action|\"Make low", "Make lowercase"},
        {"tvrn|rename|--action|'Replace text'|--set|sea", "searchTerm="},
        {"tvrn|rename|--action|Add\\ to\\ end|--action|\"Replace text\"|--set|sea", "searchTerm="},
        {"tvrn|rename|--set|sea", ""},
        {"tvrn|rename|--action|Make\\ lowercase|--set|fragmentSelection|=", "1|0|2|3"},
        {"tvrn|rename|--action|Make\\ lowercase|--set|fragmentSelection|=|2", "2"},
        {"tvrn|rename|--action|No\\ such|--set|", ""},
        {"tvrn|rename|--setting|renameM", "renameMode="},
        {"tvrn|rename|--setting|renameMode|=", ""},
        {"tavrin|--d", "--droplet"},
        {"tavrin|--|--d", ""}};
    for (const auto& [words, expected] : cases)
        EXPECT_EQ(fmt::format("{}", fmt::join(offered(linesOf(words + '|', '|')), "|")), expected) << words;
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

} // namespace
} // namespace tavrin::test
