#include "RenameBench.h"
#include "common/Testing.h"

namespace tavrin::test {

namespace {

using enum ConfirmationChoice;

const std::map<std::string, ConfirmationChoice> answers{
    {"one", one}, {"all", all}, {"leave out", leaveOut}, {"stop", stop}};

/// A plan, all that the user is asked during its run with what he answers ("answer: question", and the paths
/// that it names besides, without the folder), and what comes of it.
struct Case {
    const char *title, *plan, *dialogue, *after;
    const char* gone = ""; ///< since reading
    const char* settings = "interactiveMode=1";
    std::size_t recorded = 0; ///< failures that are told at the end
    bool isSilent = false;
};

constexpr const char* silently = "interactiveMode=0";
constexpr const char* cycles = "f/a>b f/b>c f/c>a g/a>b g/b>c g/c>a";

const Case cases[] = {
    {"all: no more questions", "a>A1 b>B1 c>C1 d>D1",
     "one: rename a -> A1 (a); leave out: rename b -> B1 (b); all: rename c -> C1 (c)", "A1=a b C1=c D1=d"},
    {"stop keeps what is done", "a>A1 b>B1 c>C1", "one: rename a -> A1 (a); stop: rename b -> B1 (b)",
     "A1=a b c"},
    {"a chain is asked item by item and goes on after one is left out, whose name is still taken",
     "a>b b>c c>d", "one: rename c -> d (c); leave out: rename b -> c; one: rename a -> b; one: failed: a",
     "d=c b a"},
    {"a swap is one question", "a>b b>a c>d", "one: swap a -> b (a, b); leave out: rename c -> d (c)",
     "a=b b=a c"},
    {"all, at a swap", "a>b b>a c>d", "all: swap a -> b (a, b)", "a=b b=a d=c"},
    {"a swap is left out", "a>b b>a c>d", "leave out: swap a -> b (a, b); leave out: rename c -> d (c)",
     "a b c"},
    {"stop, at a swap", "a>b b>a c>d", "stop: swap a -> b (a, b)", "a b c"},
    {"a cycle is asked about by folder, and is the last question", cycles, "one: cycle f",
     "f/b=f/a f/c=f/b f/a=f/c g/b=g/a g/c=g/b g/a=g/c"},
    {"unless it is left out", cycles, "leave out: cycle f; leave out: cycle g", "f/a f/b f/c g/a g/b g/c"},
    {"stop, at a cycle", cycles, "stop: cycle f", "f/a f/b f/c g/a g/b g/c"},
    {"all, at a failure: the later ones are recorded", "a>A1 b>B1 c>C1 d>D1",
     "leave out: failed: a; all: failed: b", "D1=d", "a b c", silently, 1},
    {"a ring without a member stays as it is, and a stop is asked once", "a>b b>c c>a d",
     "stop: ring failed: a", "a c d", "b", silently, 2},
    {"a swap of what has gone fails whole", "a>b b>a",
     "one: problem Could not swap file names 'a' and 'b'. Neither file was renamed.: a", "a", "b", silently},
    {"a silent droplet does not ask, but tells of failures", "a>A1 b>B1", "one: failed: a", "B1=b", "a",
     "interactiveMode=1", 0, true},
    {"no library", "x/iTune>b x/myiTunes", "", "x/b=x/iTune x/myiTunes", "", silently},
    {"a library's name in the last component, whatever the case, is warned of once",
     "x/ITUNES.txt>b x/iTunes2>c", "one: iTunes", "x/b=x/ITUNES.txt x/c=x/iTunes2", "", silently},
    {"and in the folder", "iphoto~LIBRARY/a>c", "one: iPhoto", "iphoto~LIBRARY/c=iphoto~LIBRARY/a", "",
     silently},
    {"refused", "iTunes/a>c iTunes/b>d", "stop: iTunes", "iTunes/a iTunes/b", "", silently},
    {"both, the second even after the first was refused", "iPhoto~Library/iTunes>b",
     "stop: iPhoto; one: iTunes", "iPhoto~Library/iTunes", "", silently},
    {"no warning where the settings say so", "iTunes>b", "", "b=iTunes", "",
     "interactiveMode=0 preventAccidentalITunesLibraryDamage=0 preventAccidentalIPhotoLibraryDamage=0"},
};

/// The question with the paths that it names besides, relative to the folder.
std::string wordsOf(const RunQuestion& question, const RenameBench& bench) {
    const std::string& folder = bench.folder.path();
    std::string words = bench.host.prompts.asked.back();
    if (const auto* swapped = std::get_if<SwapQuestion>(&question)) {
        EXPECT_EQ(swapped->path, folder);
        words += " (" + swapped->fullPathFirst + ", " + swapped->fullPathSecond + ")";
    } else if (const auto* renamed = std::get_if<RenameQuestion>(&question)) {
        EXPECT_EQ(renamed->path, folder);
        words += renamed->fullPath ? " (" + *renamed->fullPath + ")" : "";
    }
    const std::pair<std::string, const char*> shorter[] = {
        {folder + "/", ""},
        {"problem Could not change a file name", "failed"},
        {"problem Could not perform a temporary rename while resolving a dependency chain.", "ring failed"}};
    for (const auto& [text, instead] : shorter) {
        for (std::size_t at; (at = words.find(text)) != std::string::npos;)
            words.replace(at, text.size(), instead);
    }
    return words;
}

} // namespace

TEST(RenameAnswers, DecideWhatIsDone) {
    for (const Case& c : cases) {
        SCOPED_TRACE(c.title);
        RenameBench bench;
        setAll(bench.host, c.settings);
        bench.host.isSilent = c.isSilent;
        bench.plan(c.plan);
        for (const std::string& name : split(c.gone))
            bench.folder.remove(name);
        std::vector<std::string> left = split(c.dialogue, ';');
        const auto answer = [&](const auto& question) {
            const std::string words = wordsOf(question, bench);
            const std::string line =
                left.empty() ? "nothing" : left.front().substr(left.front().find_first_not_of(' '));
            const std::string given = line.substr(0, line.find(": "));
            EXPECT_EQ(given + ": " + words, line);
            left.erase(left.begin(), left.begin() + (left.empty() ? 0 : 1));
            return answers.contains(given) ? answers.at(given) : stop;
        };
        auto& user = bench.host.prompts;
        user.onRename = answer;
        user.onSwap = answer;
        user.onNameCycle = answer;
        user.onProblem = answer;
        user.onLibraryWarning = answer;
        bench.rename();
        EXPECT_EQ(left, split("")) << "was not asked";
        const RenameBench::Tree after = tree(c.after);
        EXPECT_EQ(bench.files(), after);
        EXPECT_EQ(bench.renamed(),
                  std::ranges::count_if(after, [](const auto& file) { return file.first != file.second; }));
        EXPECT_EQ(bench.host.errors().size(), c.recorded);
    }
}

/// By a request, which is taken between items, or because nobody runs the loop any more.
TEST(RenameAnswers, AnEndFromOutsideStopsTheRun) {
    for (const bool byRequest : {true, false}) {
        RenameBench bench;
        bench.host.set("interactiveMode", 1);
        bench.plan("a>A1 b>B1");
        bench.host.prompts.onRename = [&](const RenameQuestion&) {
            if (byRequest)
                bench.host.engine.requestStop();
            else
                bench.host.loop.close();
            return one;
        };
        std::thread worker([&] { bench.renameOnThisThread(); });
        bench.host.loop.runUntil([&] { return !bench.host.prompts.asked.empty(); });
        worker.join();
        EXPECT_EQ(bench.files(), tree("A1=a b"));
        EXPECT_TRUE(bench.reports.empty());
    }
}

} // namespace tavrin::test
