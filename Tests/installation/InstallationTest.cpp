#include "common/Testing.h"
#include "platform/desktop/Quoting.h"
#include "platform/processes/ChildProcess.h"
#include "support/text/PathParts.h"

#include <regex>

namespace tavrin::test {
namespace {

/// Runs a program of PATH; its standard error is part of the output.
ChildProcess::Result run(const std::vector<std::string>& arguments) {
    ChildProcess::Request request;
    request.arguments = {"/bin/sh", "-c", "exec 2>&1 \"$@\"", "sh"};
    request.arguments.insert(request.arguments.end(), arguments.begin(), arguments.end());
    return ChildProcess::run(request);
}

/// The output alone; fails the test where the program fails.
std::string outputOf(const std::vector<std::string>& arguments) {
    const ChildProcess::Result result = run(arguments);
    EXPECT_EQ(result.exitStatus, 0) << fmt::format("{}", fmt::join(arguments, " ")) << '\n' << result.output;
    return result.output;
}

/// The lines of a text, or its parts between another character.
std::vector<std::string> linesOf(const std::string& text, char end = '\n') {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line, end);)
        lines.push_back(line);
    return lines;
}

bool isThere(const std::string& program) {
    return run({"sh", "-c", "command -v " + quotedForShell(program)}).exitStatus == 0;
}

/// Where tvrn was built.
std::string programFolder() { return std::string(PathParts(TVRN_PROGRAM).folder); }

std::string sourcePath(const std::string& name) { return std::string(TAVRIN_SOURCE_FOLDER "/") + name; }

/// The output alone; fails the test where the program fails.
std::string sourceFile(const std::string& name) { return outputOf({"cat", sourcePath(name)}); }

using testing::IsSupersetOf;

TEST(Installation, PutsEverythingInItsPlaceAndStillWorksWhenMoved) {
    const TemporaryFolder folder;
    (void)outputOf({TAVRIN_CMAKE, "--install", TAVRIN_BUILD_FOLDER, "--prefix", folder.path("first")});
    std::vector<std::string> installed;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.path("first")))
        installed.push_back(entry.path().string().substr(folder.path("first").size() + 1));
    EXPECT_THAT(installed,
                IsSupersetOf({"bin/tvrn", "share/man/man1/tvrn.1", "share/bash-completion/completions/tvrn",
                              "share/zsh/site-functions/_tvrn", "share/fish/vendor_completions.d/tvrn.fish",
                              "share/tavrin/extract.pl"}));
#ifdef TAVRIN_HAS_WINDOW
    EXPECT_THAT(installed,
                IsSupersetOf({"bin/tavrin", "share/man/man1/tavrin.1", "share/tavrin/help/90-desktop.html",
                              "share/applications/net.calderwick.tavrin.desktop",
                              "share/metainfo/net.calderwick.tavrin.metainfo.xml",
                              "share/icons/hicolor/scalable/apps/net.calderwick.tavrin.svg",
                              "share/Thunar/sendto/net.calderwick.tavrin.desktop",
                              "share/nemo/actions/net.calderwick.tavrin.nemo_action"}));
    using std::filesystem::perms;
    EXPECT_NE(
        std::filesystem::status(folder.path("first/share/kio/servicemenus/net.calderwick.tavrin.desktop"))
                .permissions() &
            perms::owner_exec,
        perms::none);
    EXPECT_THAT(outputOf({folder.path("first/bin/tavrin"), "--version"}), HasSubstr("tavrin"));
#endif
    // Its own resources, not those of the sources.
    std::filesystem::rename(folder.path("first"), folder.path("second"));
    std::string menu = folder.read("second/share/tavrin/datePatterns menu.plist");
    menu.replace(menu.find("<string>2024-06-14<"), 19, "<string>The day itself<");
    folder.write("second/share/tavrin/datePatterns menu.plist", menu);
    EXPECT_THAT(outputOf({folder.path("second/bin/tvrn"), "actions", "Rename to date"}),
                HasSubstr("The day itself"));
}

/// The command line of a tool that judges a file of its kind.
class InstalledFile : public testing::TestWithParam<const char*> {};

TEST_P(InstalledFile, IsWithoutComplaint) {
    std::vector<std::string> words = linesOf(GetParam(), ' ');
    if (!isThere(words.front()))
        GTEST_SKIP() << words.front() << " is not installed";
    words.back() = sourcePath("Resources/" + words.back());
    const ChildProcess::Result result = run(words);
    EXPECT_EQ(result.exitStatus, 0) << result.output;
    EXPECT_THAT(result.output, testing::AnyOf("", HasSubstr("Validation was successful")));
}

INSTANTIATE_TEST_SUITE_P(
    All, InstalledFile,
    testing::Values("mandoc -Tlint -Wwarning man/tvrn.1", "mandoc -Tlint -Wwarning man/tavrin.1",
                    "desktop-file-validate desktop/net.calderwick.tavrin.desktop",
                    "desktop-file-validate menus/net.calderwick.tavrin.sendto.desktop",
                    "appstreamcli validate --no-net desktop/net.calderwick.tavrin.metainfo.xml",
                    "bash -n completions/tvrn.bash", "bash -n completions/tavrin.bash",
                    "zsh -n completions/_tvrn", "zsh -n completions/_tavrin", "fish -n completions/tvrn.fish",
                    "fish -n completions/tavrin.fish"));

TEST(Installation, TheWindowIsNoProgramForOpeningFolders) {
    EXPECT_THAT(sourceFile("Resources/desktop/net.calderwick.tavrin.desktop"),
                testing::Not(HasSubstr("MimeType")));
}

TEST(Installation, PackagesThatTheTestsAreBuiltFromAreExplained) {
    const std::string readme = sourceFile("README.md");
    for (const std::string& package : linesOf(sourceFile("packages.txt"))) {
        if (!package.starts_with('#')) {
            EXPECT_THAT(readme, HasSubstr(package));
        }
    }
}

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
        {"tvrn|re",
         "rename|recipe|redo|regex|remove|remove-chars|remove-digits|remove-vowels|renumber|replace|"
         "replace-chars"},
        {"tvrn|--v", "--verbose|--version"},
        {"tvrn|preview|--fo", "--format"},
        {"tvrn|rename|--fo", ""},
        {"tvrn|rename|--|--q", ""},
        {"tvrn|rename|pict", ""},
        {"tvrn|preview|--format|", "0|1|2"},
        {"tvrn|preview|--store|", "memory|file"},
        {"tvrn|tags|--", "--json|--files-from|--null|--help"},
        {"tvrn|--color|=|al", "always"},
        {"tvrn|lower|low", ""},
        {"tvrn|edit|low", ""},
        {"tvrn|-p|x|low", ""},
        {"tvrn|-xT|list|low", "lower"},
        {"tvrn|--depth|=|2|low", "lower"},
        {"tvrn|-r|--|low", "lower"},
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

/// What a line of an interactive shell becomes by the Tab key: `setUp` reads the completions, shows the
/// prompt "READY", and has Ctrl-G add the line to the file SEEN and empty it.
std::vector<std::string> completedIn(const std::string& shell, const TemporaryFolder& folder,
                                     const std::string& setUp, const std::vector<std::string>& typed) {
    folder.write("rc/.zshrc", setUp);
    std::string keys;
    for (const std::string& line : typed)
        keys += line + "\t\a";
    folder.write("keys", keys);
    // The terminal is read to its end, or the shell would wait for it.
    folder.write("drive",
                 "zmodload zsh/zpty; zpty shell $1; zpty -r shell text '*READY*'\n"
                 "zpty -w -n shell \"$(<keys)\"; zpty -w shell exit; while zpty -r shell text; do :; done");
    (void)run({"env", "-C", folder.path(), "PATH=" + programFolder() + ":" + std::getenv("PATH"), "TERM=dumb",
               "HOME=" + folder.path(), "ZDOTDIR=" + folder.path("rc"), "SEEN=" + folder.path("lines"),
               "COMPLETIONS=" + sourcePath("Resources/completions"), "timeout", "60", "zsh", "-f", "drive",
               shell});
    return linesOf(folder.read("lines"));
}

TEST(Completion, CompletesRecipesInRealShells) {
    const std::pair<std::string, std::string> shells[] = {
        {"bash --rcfile rc/.zshrc -i",
         "PS1=READY; source $COMPLETIONS/tvrn.bash; bind 'set bell-style none'\n"
         "put() { printf '%s\\n' \"$READLINE_LINE\" >>$SEEN; READLINE_LINE=; }; bind -x '\"\\C-g\": put'"},
        {"zsh -i",
         "PS1=READY; setopt no_auto_list no_beep; fpath=($COMPLETIONS $fpath); autoload -U compinit\n"
         "compinit -D -u; put() { print -r -- $BUFFER >>$SEEN; BUFFER= }; zle -N put; bindkey '^G' put"},
        {"fish --no-config -i -C 'source rc/.zshrc'",
         "function fish_prompt; echo READY; end; source $COMPLETIONS/tvrn.fish\n"
         "function put; commandline >>$SEEN; commandline ''; end; bind \\cg put"}};
    const TemporaryFolder folder;
    folder.write("picture.jpg", "");
    folder.write("data/Tavrin 9/Presets/Photos.tvrn8preset.plist", "");
    folder.write("data/Tavrin 9/Presets/Photo\nalbum.tvrn8preset.plist", "");
    const Variable data("XDG_DATA_HOME", folder.path("data").c_str());
    // What is typed, and what is put behind it.
    const std::pair<std::string, std::string> cases[] = {{"tvrn 'low", "er"},
                                                         {"tvrn low", "er "},
                                                         {"tvrn -x 'add x st", "art"},
                                                         {"tvrn -xe 'lower; unac", "cent"},
                                                         {"tvrn rename -r 's/ /_/ | trim e", ""},
                                                         {"tvrn rename -r 's/ /_/ ev", "ery"},
                                                         {"tvrn edit -e 'number di", "gits="},
                                                         {"tvrn preview 'number order=rand", "om"},
                                                         {"tvrn \"date \\\"YYYYMMDD HH-mm-ss-", "SSS\\\""},
                                                         {"tvrn 'tag \"<Song> <ImageW", "idth>"},
                                                         {"tvrn 'replace a pict", ""},
                                                         {"tvrn lower pict", "ure.jpg "},
                                                         {"tvrn -e lower pict", "ure.jpg "},
                                                         {"tvrn edit pict", "ure.jpg "},
                                                         {"tvrn -T pict", "ure.jpg "},
                                                         {"tvrn -p Pho", "tos "},
                                                         {"tvrn --on-conflict sk", "ip "},
                                                         {"tvrn recipe --pl", "ist "},
                                                         {"tvrn edi", "t "}};
    std::vector<std::string> typed, expected;
    for (const auto& [line, rest] : cases) {
        typed.push_back(line);
        expected.push_back(line + rest);
    }
    for (const auto& [shell, setUp] : shells) {
        SCOPED_TRACE(shell);
        if (!isThere("zsh") || !isThere(shell.substr(0, shell.find(' '))))
            GTEST_SKIP() << shell << " is not installed";
        EXPECT_EQ(completedIn(shell, folder, setUp, typed), expected);
        std::filesystem::remove(folder.path("lines"));
    }
}

TEST(Completion, KnowsTheSettingsAndOptionsOfTheProgramEverywhere) {
    const std::string zsh = sourceFile("Resources/completions/_tvrn");
    const std::string fish = sourceFile("Resources/completions/tvrn.fish");
    const std::string manual = sourceFile("Resources/man/tvrn.1");
    const TemporaryFolder folder;
    std::vector<std::string> preview{TVRN_PROGRAM, "preview", "--action", "Make lowercase",
                                     folder.write("a")};
    const std::vector<std::string> keys = offered({"tvrn", "rename", "--setting", ""});
    EXPECT_GT(keys.size(), 10U);
    for (std::string key : keys) {
        SCOPED_TRACE(key);
        preview.insert(preview.end(), {"--setting", key + "0"});
        key.pop_back();
        EXPECT_THAT(zsh, HasSubstr("'" + key + ":"));
        EXPECT_THAT(fish, HasSubstr(" " + key + " '"));
        EXPECT_THAT(manual, HasSubstr(key + " Pq"));
    }
    (void)outputOf(preview);
    const std::regex option("[ (]--([a-z]+(?:-[a-z]+)?)");
    for (const char* command :
         {"preview", "rename", "edit", "recipe", "history", "undo", "redo", "actions", "tags", "presets"}) {
        EXPECT_THAT(manual, HasSubstr(std::string("\n.Cm ") + command + "\n"));
        std::string help = outputOf({TVRN_PROGRAM, command, "--help"});
        help.resize(std::min(help.size(), help.find("Examples:")));
        const std::vector<std::string> inBash = offered({"tvrn", command, "--"});
        const std::set<std::string> options(std::sregex_token_iterator(help.begin(), help.end(), option, 1),
                                            {});
        EXPECT_FALSE(options.empty());
        for (const std::string& name : options) {
            SCOPED_TRACE(std::string(command) + " --" + name);
            EXPECT_THAT(inBash, Contains("--" + name));
            EXPECT_THAT(zsh, testing::ContainsRegex("--" + name + "(\\[|,|}|')"));
            EXPECT_THAT(fish, HasSubstr(" -l " + name + " "));
            EXPECT_THAT(manual, HasSubstr("Fl -" + name));
        }
    }
}

TEST(Manual, TeachesEveryVerb) {
    const std::string manual =
        std::regex_replace(sourceFile("Resources/man/tvrn.1"), std::regex(R"(\\-)"), "-");
    const std::vector<std::string> verbs = linesOf(outputOf({TVRN_PROGRAM, "recipe", "--complete", ""}));
    EXPECT_GT(verbs.size(), 30U);
    for (const std::string& verb : verbs)
        EXPECT_THAT(manual, testing::ContainsRegex("(fB|, )" + verb.substr(0, verb.find('\t'))));
}

/// What an example finds, as it is made in a shell, what is looked at then, and what that shows.
struct ReadmeExample {
    const char* before;
    const char* look;
    const char* shown;
};

TEST(Readme, ExamplesDoWhatTheySay) {
    constexpr const char* names = "find * | LC_ALL=C sort";
    const ReadmeExample examples[] = {
        {"cp ../tests/samples/photo.jpg DSC1.JPG; cp DSC1.JPG DSC2.JPG", names,
         "2024-06-14 01.jpg\n2024-06-14 02.jpg\n"},
        {"cp ../tests/samples/song.mp3 track.mp3", names, "03 Blue Hour.mp3\n"},
        {"mkdir -p album/day_1; touch album/day_1/a_b_c.txt", names,
         "album\nalbum/day 1\nalbum/day 1/a b c.txt\n"},
        {"echo new >a.png; echo old >b.png; touch -d 2024-01-02 a.png; touch -d 2024-01-01 b.png",
         "ls; cat *", "Screenshot 001.png\nScreenshot 002.png\nold\nnew\n"},
        {"touch one two; unset VISUAL; export EDITOR='sed -i s/two$/zwei/'", names, "one\nzwei\n"},
        {"cp ../tests/samples/photo.jpg .; cp $PRESET \"$PRESETS/My Own.tvrn8preset.plist\"",
         "for word in 'Replace characters' searchTerm 'True North' 'My Own'; do grep -q \"$word\" ../log || "
         "echo \"no $word\"; done",
         ""},
        {"echo one >a; echo two >b", "cat a b", "two\none\n"},
        {"touch 'É  B.JPG' C.png; cp $PRESET \"$PRESETS/Holiday.tvrn8preset.plist\"", names,
         "c.png\ne-b.jpg\nweb.recipe\n"},
        {"touch IMG_1.jpg", "ls; tail -n 1 ../log", "Trip 1.jpg\nreplace \"IMG_\" \"Trip \"\n"},
        {"mkdir raw; touch a.txt b.jpg raw/c.jpg; touch -d '2 hours ago' d.png", names,
         "a_old.txt\nd.png\nnew_b.jpg\nraw\nraw/c.jpg\n"},
        {"touch x.txt x_draft.txt y_draft.txt; set +e; trap - ERR", "ls; grep -c changed ../log",
         "x.txt\nx_draft.txt\ny.txt\n2\n"},
        {"touch A b", "sed 's,.*/,,' ../log", "A\ta\n"},
        {"touch A; tvrn -x lower A", "ls; grep -c '^{\"run\"' ../log", "a\n3\n"}};
    const std::string readme = sourceFile("README.md");
    const std::size_t start = readme.find("## Five recipes");
    const std::string section = readme.substr(start, readme.find("\n## Settings", start) - start);
    const std::regex block("(?:    .*\n)+");
    const std::vector<std::string> blocks(std::sregex_token_iterator(section.begin(), section.end(), block),
                                          {});
    ASSERT_EQ(blocks.size(), std::size(examples));
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        const auto& [before, look, shown] = examples[i];
        const TemporaryFolder folder;
        const Variable records("XDG_STATE_HOME", folder.path("state").c_str());
        const Variable data("XDG_DATA_HOME", folder.path("data").c_str());
        const std::string script = fmt::format(
            "exec 3>&1 &>log; trap 'cat ../log >&3' ERR; PATH={}:$PATH; ln -s {} tests; mkdir work; cd work\n"
            "PRESETS=../data/Tavrin\\ 9/Presets PRESET=../tests/command/data/lowercase.plist\n"
            "mkdir -p \"$PRESETS\"\n{}\n{}\nexec >&3; {}",
            quotedForShell(programFolder()), quotedForShell(sourcePath("Tests")), before, blocks[i], look);
        EXPECT_EQ(outputOf({"env", "-C", folder.path(), "bash", "-ec", script}), shown) << blocks[i];
    }
}

} // namespace
} // namespace tavrin::test
