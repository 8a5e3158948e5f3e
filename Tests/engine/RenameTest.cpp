#include "RenameBench.h"
#include "common/FailingFileSystem.h"
#include "engine/renaming/NameOnDisk.h"
#include "engine/renaming/PrepareForRenamingStage.h"
#include "support/text/Text.h"

#include <random>

namespace tavrin::test {
namespace {

const std::string linkReason =
    "This file is a symbolic link and for safety reasons, Tavrin will not rename symbolic links.";
const std::string defaultReason =
    "You may not have sufficient access privileges to rename the file, the file may be on a read-only "
    "medium, an incompatible external drive or unsupported remote file system or it may be locked.";

/// One item that is to get a name, and what the user is told when it does not: the detail, but of a link and
/// of a taken name; nothing where it works.
struct Case {
    const char* title;
    std::string name;
    std::u16string finalName;
    std::string told;
    const char* sinceReading = "";

    [[nodiscard]] std::string message() const {
        if (told == "taken")
            return "Another file with this name already exists in this folder.";
        return (told.ends_with("link now") ? linkReason : defaultReason) + " (" + told + ")";
    }
};

const Case cases[] = {
    {"empty", "a", u"", "The new name is empty"},
    {"the folder itself", "a", u".", "This name stands for a folder itself"},
    {"the folder above", "a", u"..", "This name stands for a folder itself"},
    {"the end of a name", "a", {u'b', 0, u'c'}, "It holds a character that ends a name"},
    {"too long in bytes", "a", std::u16string(87, u'\u4e00'), "File name too long: 261 of 255 bytes"},
    {"just short enough", "a", std::u16string(85, u'\u4e00'), ""},
    {"a high half", "a\U0001F4A9", u"a\xD83D", "It cuts a character in two"},
    {"a low half that looks like a byte", "a\U0001F480", u"a\xDC80", "It cuts a character in two"},
    {"a byte that the name has not", "a", u"a\xDCE9", "It cuts a character in two"},
    {"a byte that the name has", "a \xE9", u"b \xDCE9", ""},
    {"a taken name", "a", u"z", "taken"},
    {"a name taken by a dangling link", "a", u"new", "taken", "link new nowhere"},
    {"a change of case to a name of another", "a", u"A", "taken", "write A other"},
    {"a change of case to another name of the same file", "a", u"A", "taken", "second a A"},
    {"gone", "a", u"new", "No such file: it has been removed or renamed since the list was read", "remove a"},
    {"saved anew by replacing", "a", u"new", "", "save a"},
    {"", "a", u"new", "It was a file when the list was read, and is a folder now", "remove a, folder a"},
    {"", "a", u"new", "It was a file when the list was read, and is a link now", "remove a, link a z"},
};

/// Makes rename, exchange and link answer like file systems that know them not.
int refusing(const FileEvent& event, bool link) {
    if (event.call == FileCall::rename || event.call == FileCall::exchange)
        return EOPNOTSUPP;
    return link && event.call == FileCall::link ? EPERM : 0;
}

/// In all modes, and by all ways to refuse a taken name.
TEST(RenameReasons, AreThoseOfTheSystem) {
    for (int modeAndWay = 0; modeAndWay < 9; ++modeAndWay) {
        const int way = modeAndWay % 3;
        for (const Case& one : cases) {
            SCOPED_TRACE(fmt::format("{}{}, mode {}, way {}", one.title, one.told, modeAndWay / 3, way));
            RenameBench bench;
            bench.host.set("renameMode", modeAndWay / 3);
            bench.host.defaults.setObject("alreadySwitchedToLionModeOnce", true);
            bench.make({one.name, "z"});
            bench.read({one.name, "z"});
            bench.happens(one.sinceReading);
            bench.setFinalName(one.name, one.finalName);
            const auto before = bench.folder.tree();
            FailingFileSystem disk;
            disk.before = [&](const FileEvent& event) { return way == 0 ? 0 : refusing(event, way == 2); };
            bench.rename();
            const bool works = one.told.empty();
            EXPECT_EQ(bench.renamed(), works ? 1 : 0);
            EXPECT_EQ(bench.host.counters().numberOfItemsNotRenamed, works ? 0 : 1);
            EXPECT_EQ(bench.folder.tree() == before, !works);
            ASSERT_EQ(bench.reports.size(), works ? 0U : 1U);
            if (!works) {
                EXPECT_EQ(bench.reports[0].message, one.message());
                EXPECT_EQ(bench.reports[0].title, "Could not change a file name");
            }
        }
    }
}

TEST(RenameReasons, LinksAreRefusedWithoutATry) {
    RenameBench bench;
    bench.happens("link f/link a, link f/folder-link ..");
    bench.read({"f"});
    bench.setFinalName("f/link", u"new link");
    bench.setFinalName("f/folder-link", u"new folder link");
    FailingFileSystem disk;
    bench.rename();
    EXPECT_EQ(disk.nameChangeCount(), 0U);
    ASSERT_EQ(bench.reports.size(), 2U);
    EXPECT_EQ(bench.reports[0].message, linkReason);
}

TEST(RenameModes, TryTheirRouteAndThenTheOthersUnlessTheNameIsTaken) {
    for (const auto& [mode, tries] : {std::pair{0, 4U}, {1, 4U}, {2, 4U}, {3, 0U}, {-1, 0U}}) {
        for (const int error : {EACCES, EEXIST, EROFS}) {
            SCOPED_TRACE(mode);
            RenameBench bench;
            bench.host.set("renameMode", mode);
            bench.host.defaults.setObject("alreadySwitchedToLionModeOnce", true);
            bench.plan("a>b");
            FailingFileSystem disk;
            disk.failKind(FileCall::rename, error);
            bench.rename();
            EXPECT_EQ(disk.nameChangeCount(), error == EEXIST && tries > 0 ? 1U : tries);
            EXPECT_EQ(bench.files(), tree("a"));
            ASSERT_EQ(bench.reports.size(), 1U);
            EXPECT_EQ(bench.reports[0].message.ends_with("(Read-only file system)"),
                      error == EROFS && tries > 0);
        }
    }
}

TEST(RenameModes, TheOldOneIsSwitchedToTheNewestOnceOnly) {
    RenameBench bench;
    bench.plan("a");
    for (const int kept : {0, 2}) {
        bench.host.set("renameMode", 2);
        bench.rename();
        EXPECT_EQ(bench.host.settings.values().renameMode, kept);
    }
}

/// One look through the folder tells for all its items whether case counts there.
/// What names have in common, and what is plain beside it, makes no difference.
TEST(RenameCase, IsToldByWholeNames) {
    const std::vector<std::string> pieces =
        split("a A k K \u212A \u00DF s S \u0301 \u00E9 \u00C9 e E \u0130 i \u03C3 \u03A3 \xC3 \xA9");
    std::mt19937 random(1);
    const auto piece = [&] { return pieces[random() % pieces.size()]; };
    int equal = 0;
    for (int i = 0; i < 20000; ++i) {
        std::string a;
        std::string b;
        for (unsigned length = random() % 4; length > 0; --length) {
            const std::string shared = piece();
            a += shared;
            b += random() % 3 == 0 ? piece() : shared;
        }
        const bool isSame = text::equalIgnoringCase(text::fromBytes(a), text::fromBytes(b));
        EXPECT_EQ(nameOnDisk::differsOnlyInCase(a, b), a != b && isSame) << a << " | " << b;
        equal += isSame && a != b;
    }
    EXPECT_GT(equal, 100);
}

TEST(RenameCase, ChangesDirectlyOrByAStandInThatIsFree) {
    const std::string dummy =
        "this~dummy~file~is~used~to~temporarily~stand~in~for~the~real~file~that~will~be~"
        "renamed~during~a~Cocoa~case~sensitive~rename";
    for (const bool ignoresCase : {false, true}) {
        RenameBench bench;
        bench.plan("report.txt>REPORT.TXT other.txt>Other.txt \u00e9>\u00c9 " + dummy);
        FailingFileSystem disk;
        disk.ignoresCase = ignoresCase;
        bench.rename();
        EXPECT_EQ(bench.files(), tree("REPORT.TXT=report.txt Other.txt=other.txt \u00c9=\u00e9 " + dummy));
        EXPECT_EQ(disk.nameChangeCount(), ignoresCase ? 9U : 3U);
        EXPECT_EQ(disk.callCount(FileCall::entries), ignoresCase ? 1U : 0U);
    }
}

TEST(RenameFolders, AnotherFolderInThePlaceOfTheOneThatWasReadIsNotTouched) {
    for (const bool byLink : {true, false}) {
        RenameBench bench;
        bench.plan("f/sub/a>b f/sub/b>a outside/a outside/b");
        bench.happens("move f/sub elsewhere");
        bench.happens(byLink ? "link f/sub ../outside" : "move outside f/sub");
        const auto before = bench.folder.tree();
        bench.rename();
        EXPECT_EQ(bench.folder.tree(), before);
        ASSERT_EQ(bench.reports.size(), 1U);
        EXPECT_TRUE(bench.reports[0].message.ends_with(
            "(\"a\": The folder has been replaced by another since the list was read)"));
        EXPECT_EQ(bench.host.counters().numberOfItemsNotRenamed, 2);
    }
}

TEST(RenameVolumes, ThatCannotRefuseATakenNameAreToldOfOnce) {
    RenameBench bench;
    bench.plan("a>A1 b>B1 c>C1");
    FailingFileSystem disk;
    // A file system that renames, but neither links nor makes files.
    disk.before = [](const FileEvent& event) {
        return event.call == FileCall::reserve ? EPERM : refusing(event, true);
    };
    bench.rename();
    EXPECT_EQ(bench.renamed(), 3);
    EXPECT_EQ(bench.host.events,
              std::vector<std::string>{"notice The file system of " + bench.folder.path() +
                                       " cannot refuse a taken name; a file created there in the same moment "
                                       "could be replaced."});
}

/// A small plan, what must come out, how many items and calls that takes, and the list afterwards.
const struct Plan {
    const char *title, *plan, *after;
    int renamed;
    std::size_t diskRenames;
    const char* sources;
} plans[] = {
    {"nothing to do", "a", "a", 0, 0, "a"},
    {"one", "a>b z", "b=a z", 1, 1, "z b"},
    {"swap", "a>b b>a", "a=b b=a", 2, 1, "a b"},
    {"swap of names wanted in another case, free where case counts", "a>B b>A", "A=b B=a", 2, 2, "A B"},
    {"swap of case", "a>A A>a", "a=A A=a", 2, 1, "A a"},
    {"chain", "a>b b>c c>d", "d=c c=b b=a", 3, 3, "d c b"},
    {"cycle with a bystander", "a>b b>c c>a z", "b=a c=b a=c z", 3, 2, "z b c a"},
    {"cycle beside a swap and a chain", "a>b b>c c>a p>q q>p x>y y>w", "b=a c=b a=c q=p p=q y=x w=y", 7, 5,
     "w y p q b c a"},
    {"cycle beside an item that is to be composed differently: it stays", "a>b b>c c>a e\u0301>\u00E9",
     "b=a c=b a=c e\u0301", 3, 2, "e\u0301 b c a"},
    {"case alone", "r.txt>R.TXT", "R.TXT=r.txt", 1, 1, "R.TXT"},
    {"the very name goes before one that differs in case", "A>y a x>A", "a y=A A=x", 2, 2, "a y A"},
    {"a folder and its contents", "f/>F2 f/a>b f/g/>a f/g/b>c", "F2/b=f/a F2/a/c=f/g/b", 4, 4, "F2"},
    {"folders that swap, with contents that swap", "f/>g f/a>b f/b>a g/>f g/a", "g/a=f/b g/b=f/a f/a=g/a", 4,
     2, "f g"},
    {"a slash in a name is a colon on disk and leads nowhere", "a>..:x:y p:q>r r>p:q", "..:x:y=a r=p:q p:q=r",
     3, 2, "..:x:y p:q r"},
    {"names that are no UTF-8",
     "f/\xE9>\xE9! g/1\xE9>2\xE9 g/2\xE9>1\xE9 h/1\xE9>2\xE9 h/2\xE9>3\xE9 h/3\xE9>1\xE9",
     "f/\xE9!=f/\xE9 g/2\xE9=g/1\xE9 g/1\xE9=g/2\xE9 h/2\xE9=h/1\xE9 h/3\xE9=h/2\xE9 h/1\xE9=h/3\xE9", 6, 4,
     "f g h"},
};

TEST(Rename, SmallPlans) {
    for (const Plan& one : plans) {
        SCOPED_TRACE(one.title);
        RenameBench bench;
        bench.plan(one.plan);
        FailingFileSystem counting;
        bench.rename();
        EXPECT_EQ(bench.files(), tree(one.after));
        EXPECT_EQ(bench.renamed(), one.renamed);
        EXPECT_EQ(counting.nameChangeCount(), one.diskRenames);
        EXPECT_EQ(bench.sourcePaths(), split(one.sources));
        EXPECT_TRUE(bench.reports.empty());
    }
}

/// Also where there are so few descriptors that not even two folders can be open.
TEST(Rename, OneLookAndOneRenamePerItemFolderByFolder) {
    RenameBench bench;
    std::string plan;
    for (int i = 0; i < 1200; ++i)
        plan += fmt::format("{}/{}>new{} ", "fgh"[i % 3], i, i);
    bench.plan(plan);
    FailingFileSystem counting;
    counting.failKind(FileCall::openFolder, EMFILE, 2);
    std::vector<std::string> folders;
    counting.before = [&](const FileEvent& event) {
        if (event.changesNames() && (folders.empty() || folders.back() != event.folder))
            folders.push_back(event.folder);
        return 0;
    };
    bench.rename();
    EXPECT_EQ(bench.renamed(), 1200);
    EXPECT_EQ(folders.size(), 3U);
    EXPECT_EQ(counting.callCount(FileCall::rename), 1200U);
    EXPECT_EQ(counting.callCount(FileCall::status), 1203U); // and one at each folder
    EXPECT_EQ(counting.callCount(FileCall::openFolder), 4U);
}

using enum ConfirmationChoice;

const std::map<std::string, ConfirmationChoice> answers{
    {"one", one}, {"all", all}, {"leave out", leaveOut}, {"stop", stop}};

/// A plan, all that the user is asked during its run with what he answers ("answer: question", and the paths
/// that it names besides, without the folder), and what comes of it.
struct Asked {
    const char *title, *plan, *dialogue, *after;
    const char* gone = ""; ///< since reading
    const char* settings = "interactiveMode=1";
    std::size_t recorded = 0; ///< failures that are told at the end
    bool isSilent = false;
};

constexpr const char* silently = "interactiveMode=0";
constexpr const char* cycles = "f/a>b f/b>c f/c>a g/a>b g/b>c g/c>a";

const Asked askedCases[] = {
    {"all: no more questions", "a>A1 b>B1 c>C1 d>D1",
     "one: rename a -> A1 (a); leave out: rename b -> B1 (b); all: rename c -> C1 (c)", "A1=a b C1=c D1=d"},
    {"items of several folders are asked about by their names", "f/a>A1 f/c>C1 g/b>B1",
     "one: rename a -> A1 (f/a); one: rename b -> B1 (g/b); one: rename c -> C1 (f/c)",
     "f/A1=f/a f/C1=f/c g/B1=g/b"},
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
        EXPECT_TRUE(renamed->path.starts_with(folder));
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

TEST(RenameAnswers, DecideWhatIsDone) {
    for (const Asked& c : askedCases) {
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

/// What a run has left and told, in words.
std::string storyOf(RenameBench& bench) {
    std::string story = fmt::format("{} renamed\n", bench.renamed());
    for (const auto& [name, before] : bench.files())
        story += name + '=' + before + '\n';
    for (const ProblemReport& report : bench.reports)
        story += bench.relative(report.fullPath) + ": " + report.message + '\n';
    return story;
}

TEST(RenamesAhead, ChangeNothingButTheTime) {
    const std::pair<const char*, const char*> rounds[] = {
        {"a>A1 b>B1 f/c>C1 f/d>D1 f/>g", ""},
        {"a>b b>c c>d d x>y y>x p>q q>r r>p", ""},
        {"a>A1 b>B1 c>C1 d>D1", "remove a, save b, write C1 text, folder D1"},
        {"a>A1 b>B1 f/c>C1", "remove a, folder a, move f g"},
    };
    for (const auto& [plan, since] : rounds) {
        std::vector<std::string> stories;
        for (const bool isRemote : {false, true}) {
            FailingFileSystem disk;
            disk.isRemote = isRemote;
            RenameBench bench;
            bench.plan(plan);
            bench.happens(since);
            bench.rename();
            bench.checkOutcomes();
            stories.push_back(storyOf(bench));
        }
        EXPECT_EQ(stories[0], stories[1]) << plan;
    }
}

std::string planInThreeFolders(int items) {
    std::string plan;
    for (int i = 0; i < items; ++i)
        plan += fmt::format("f{}/{}>x{} ", i % 3, i, i);
    return plan;
}

TEST(RenamesAhead, AreMadeSideBySideAndAllCountWhenTheRunIsStopped) {
    FailingFileSystem disk;
    disk.isRemote = true;
    RenameBench bench;
    bench.plan(planInThreeFolders(300));
    std::atomic<int> renames{0};
    std::atomic<int> underWay{0};
    std::atomic<int> mostUnderWay{0};
    disk.before = [&](const FileEvent& event) {
        if (event.call != FileCall::rename)
            return 0;
        mostUnderWay = std::max(mostUnderWay.load(), ++underWay);
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        --underWay;
        if (++renames == 100)
            bench.host.engine.requestStop();
        return renames % 10 == 0 ? EACCES : 0;
    };
    bench.rename();
    const auto files = bench.files();
    const auto moved = std::ranges::count_if(
        files, [](const auto& file) { return file.first.find('x') != std::string::npos; });
    EXPECT_EQ(bench.renamed(), moved);
    EXPECT_GT(moved, 50);
    EXPECT_LT(moved, 200);
    EXPECT_GT(mostUnderWay, 1);
    bench.checkOutcomes();
}

/// In the middle of the calls ahead, in front of them, and at the record of the run.
TEST(RenamesAhead, AreMadeInTheirTurnWhereDescriptorsAreWanting) {
    for (std::size_t failing = 1; failing <= 12; ++failing) {
        SCOPED_TRACE(failing);
        FailingFileSystem disk;
        disk.isRemote = true;
        RenameBench bench;
        bench.plan("f/a>b f/c>d g/a>b g/c>d h/a>b h/c>d i/a>b j/c>d");
        disk.failKind(FileCall::openFolder, EMFILE, failing);
        bench.rename();
        EXPECT_EQ(bench.renamed() + static_cast<int>(bench.reports.size()), 8);
        EXPECT_LE(bench.reports.size(), failing == 1 ? 2U : 0U) << "of the only folder that was open";
        bench.checkOutcomes();
    }
}

/// As where memory is wanting.
TEST(RenamesAhead, CountWhatIsDoneAndLeaveTheRestToTheRunWhereOneThrows) {
    for (const FileCall call : {FileCall::status, FileCall::rename}) {
        FailingFileSystem disk;
        disk.isRemote = true;
        RenameBench bench;
        bench.plan(planInThreeFolders(60));
        std::atomic<int> thrown{0};
        disk.before = [&](const FileEvent& event) {
            if (event.call == call && event.name == "30" && thrown++ == 0)
                throw std::bad_alloc();
            return 0;
        };
        bench.rename();
        EXPECT_GT(thrown, 1) << "the run has tried it again";
        EXPECT_EQ(bench.renamed(), 60);
        EXPECT_TRUE(bench.reports.empty());
        bench.checkOutcomes();
    }
}

/// A folder goes between the listing of the one above it and its own.
TEST(RenamesAhead, TellOfFoldersThatVanishUnderThem) {
    FailingFileSystem disk;
    disk.isRemote = true;
    RenameBench bench;
    bench.plan(planInThreeFolders(60));
    std::atomic<int> renames{0};
    disk.before = [&](const FileEvent& event) {
        if (event.call == FileCall::rename && ++renames == 5)
            bench.happens("move f1 gone");
        return 0;
    };
    bench.rename();
    bench.checkOutcomes();
    const auto files = bench.files();
    EXPECT_EQ(bench.renamed(), std::ranges::count_if(files, [](const auto& file) {
                  return file.first.find("/x") != std::string::npos;
              }));
    EXPECT_EQ(bench.renamed() + static_cast<int>(bench.reports.size()), 60);
}

/// Rows without a disk, and the plan that is made for them.
class PlanTest : public StageTest {
  protected:
    void prepare() {
        context.commit();
        run<PrepareForRenamingStage>();
        context.reset();
    }

    /// Children as "name>final name", or the name alone where it stays.
    std::vector<RowId> insert(RowId parent, std::string_view words) {
        std::vector<RowId> rows;
        for (const std::string& word : split(words)) {
            const std::size_t arrow = word.find('>');
            rows.push_back(context.insertFile(parent, word.substr(0, arrow), false, false, 0));
            if (arrow == std::string::npos)
                continue;
            const std::u16string wanted = shownName(word.substr(arrow + 1));
            context.setFinalName(rows.back(), wanted);
            context.change(rows.back()).diff = !text::canonicallyEqual(context.name(rows.back()), wanted);
        }
        return rows;
    }

    std::string nameOf(RowId row) { return row == noRow ? "-" : std::string(context.component(row)); }

    /// "name=waits for,waited for by", with "+" for free and "*" for a swap.
    std::string linksOf(RowId row) {
        const NodeRow read = context.row(row);
        return nameOf(row) + "=" + nameOf(read.cannotBeRenamedBefore) + "," +
               nameOf(read.mustBeRenamedBefore) + (read.canBeRenamedIndependently ? "+" : "") +
               (read.mustBeSwapped ? "*" : "");
    }

    StoreContext context{*host.persistentStoreCoordinator(), StoreContext::MergePolicy::contextWins};
};

TEST_F(PlanTest, LinksOfOneFolder) {
    const char* const linkCases[][3] = {
        {"free", "a>x b", "a=-,-+ b=-,-+"},
        {"chain", "a>b b>c c>d", "a=b,- b=c,a c=-,b+"},
        {"cycle", "a>b b>c c>a", "a=b,c b=c,a c=a,b"},
        {"swap", "a>b b>a", "a=b,b* b=a,a*"},
        {"swap, in another case", "a>B b>A", "a=b,b* b=a,a*"},
        {"change of case", "report.txt>REPORT.TXT", "report.txt=-,-+"},
        {"change of case onto another item", "a>A A>x", "a=A,- A=-,a+"},
        {"swap of case", "a>A A>a", "a=A,A* A=a,a*"},
        {"the very name first", "A>x a b>A", "A=-,b+ a=-,-+ b=A,-"},
        {"of several that differ in case the last", "Ab aB c>ab", "Ab=-,-+ aB=-,c+ c=aB,-"},
        {"held by one that stays", "a>b b", "a=b,- b=-,a+"},
        {"two want one name: the last is the one waited by", "a>c b>c c>x", "a=c,- b=c,- c=-,b+"},
        {"beyond ASCII, and composition counts", "\u00C9>x y>\u00E9 z>e\u0301",
         "\u00C9=-,y+ y=\u00C9,- z=-,-+"},
        {"apart from composition it keeps its name, and waits for nobody", "\u00E9>y e\u0301>\u00E9",
         "\u00E9=-,-+ e\u0301=-,-+"},
        {"a slash is a colon", "p:q>x y>p:q", "p:q=-,y+ y=p:q,-"},
        {"names that cannot be wait for nobody", "a> b>\xE9 c>..", "a=-,-+ b=-,-+ c=-,-+"},
    };
    for (const auto& [title, children, links] : linkCases) {
        SCOPED_TRACE(title);
        const std::vector<RowId> rows = insert(context.insertGhostNode(std::string("/") + title), children);
        prepare();
        std::vector<std::string> found;
        for (const RowId row : rows)
            found.push_back(linksOf(row));
        EXPECT_EQ(found, split(links));
    }
}

/// More than fits into one batch, of siblings and of folders.
TEST_F(PlanTest, SiblingsOfAHugeFolderAndOfManyFoldersAreLinked) {
    constexpr std::size_t childCount = 25000;
    const RowId ghost = context.insertGhostNode("/x");
    std::string names;
    for (std::size_t i = 0; i < childCount; ++i)
        names += std::to_string(i) + ">" + std::to_string((i + 1) % childCount) + " ";
    const std::vector<RowId> ring = insert(context.insertFile(ghost, "huge", false, true, 0), names);
    std::vector<RowId> small;
    for (int i = 0; i < 2100; ++i)
        small.push_back(
            insert(context.insertFile(ghost, "f" + std::to_string(i), false, true, 0), "a>b b").front());
    prepare();
    EXPECT_EQ(std::ranges::count_if(small, [&](RowId row) { return linksOf(row) == "a=b,-"; }), 2100);
    std::size_t linked = 0;
    for (std::size_t i = 0; i < childCount; ++i) {
        const NodeRow row = context.row(ring[i]);
        linked += row.cannotBeRenamedBefore == ring[(i + 1) % childCount] &&
                          row.mustBeRenamedBefore == ring[(i + childCount - 1) % childCount] && row.depth == 2
                      ? 1U
                      : 0U;
    }
    EXPECT_EQ(linked, childCount);
}

} // namespace
} // namespace tavrin::test
