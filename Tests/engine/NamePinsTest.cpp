#include "RenameBench.h"
#include "common/RandomChains.h"
#include "engine/naming/NameProblems.h"

namespace tavrin::test {
namespace {

/// "a=x" pins the name x to a, "a=" unpins it, "-a" leaves it out, "+a" takes it in again.
std::vector<NamePins::Change> changes(const TemporaryFolder& folder, std::string_view words) {
    std::vector<NamePins::Change> result;
    for (const std::string& word : split(words)) {
        const std::size_t sign = word.find('=');
        if (sign == std::string::npos)
            result.push_back({folder.path(word.substr(1)), std::nullopt, word.front() == '-'});
        else
            result.push_back({folder.path(word.substr(0, sign)), word.substr(sign + 1)});
    }
    return result;
}

struct PinBench : RenameBench {
    PinBench() : RenameBench({}, inMemory()) {
        host.onPins = [this](auto given) { settle(std::move(given)); };
    }
    void settle(std::vector<NamePins::Change> given) {
        pins.apply(std::move(given));
        host.engine.setPins(pins);
    }
    /// "code name" of each row with a problem.
    std::vector<std::string> problems() {
        StoreContext& context = host.managedObjectContext();
        const std::lock_guard lock(context.mutex());
        std::vector<std::string> told;
        for (const RowId id : rowsWithProblems(context, Predicate::always()))
            told.push_back(std::string(problemOf(context, id)->code) + " " + relative(context.fullPath(id)));
        return told;
    }
    NamePins pins;
};

TEST(NamePins, SettleNamesBesideTheSteps) {
    struct Case {
        const char *name, *onDisk, *steps, *pins, *finalNames, *problems;
        int toRename, total;
        const char* settings = "";
    };
    const char* const numbers = "Completely rename newName=n; Produce numbered list prefix= padding=1";
    const Case cases[] = {
        {"one name is other than the steps make it", "a b", "Make uppercase", "a=x", "a=x b=B", "", 2, 2},
        {"also without any step", "a b", "Make uppercase active=0", "a=x", "a=x b=b", "", 1, 2},
        {"a name byte by byte, in a row of folders too", "f/ f/a", "Make uppercase active=0",
         "f=\xFF: f/a=e\u0301", "f=\xFF/ f/a=e\u0301", "", 2, 2},
        {"its own name", "a b", "Make uppercase", "a=a", "a=a b=B", "", 1, 2},
        {"others are made distinct from it", "a b c", "Completely rename newName=n", "b=n", "a=na b=n c=nb",
         "", 3, 3},
        {"though they come first", "a b", "Completely rename newName=n", "b=N", "a=na b=N", "", 2, 2},
        {"also from it what would stay as it is", "a b", "Make uppercase active=0", "a=b", "a=b b=ba", "", 2,
         2},
        {"but not what takes no part", "a b/", "Make uppercase active=0", "a=b", "a=b b=ba", "taken:a", 1, 1,
         "processFolders=0"},
        {"two want one name", "a b c", "Make uppercase active=0", "a=x c=x", "a=x b=b c=x",
         "conflict:a conflict:c", 2, 3},
        {"the same without names being made distinct in the preview", "a b c", "Completely rename newName=x",
         "a=x c=x", "a=x b=x c=x", "conflict:a conflict:c", 3, 3, "previewConflictResolution=0"},
        {"an exchange of names", "a b", "Make uppercase active=0", "a=b b=a", "a=b b=a", "", 2, 2},
        {"names that mean nothing", "a b", "Make uppercase active=0", "a=. b=..", "a=. b=..",
         "forbidden:a forbidden:b", 2, 2},
        {"who is left out takes no number", "a b c", numbers, "-b", "a=1 b=b c=2", "", 2, 2},
        {"and its name is taken", "1 b c", numbers, "-1", "1=1 b=1a c=2", "", 2, 2},
        {"also for a name by hand", "a b", numbers, "-a b=a", "a=a b=a", "taken:b", 1, 1},
        {"left out with a name by hand", "a b", numbers, "-a a=x", "a=a b=1", "", 1, 1},
        {"nor does it make numbers wider", "a b c d e f g h i j",
         "Produce numbered list prefix= padding=1 paddingMode=1", "-j",
         "a=1 b=2 c=3 d=4 e=5 f=6 g=7 h=8 i=9 j=j", "", 9, 9},
        {"ranks of an order", "a b c", "Produce numbered list prefix= padding=1 sortingMode=11", "-b",
         "a=2 b=b c=1", "", 2, 2},
        {"each folder counts by itself", "t/ t/a t/b t/c",
         "Produce numbered list prefix= padding=1 sortEachFolderSeparately=1", "-t -t/a",
         "t=t t/a=a t/b=1 t/c=2", "", 2, 2},
        {"what takes no part anyway", "f/ a", "Make uppercase", "f=x", "a=A f=f", "", 1, 1,
         "processFolders=0"},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        PinBench bench;
        setAll(bench.host, test.settings);
        bench.make(split(test.onDisk));
        for (const std::string& name : split(test.onDisk))
            if (std::ranges::count(name, '/') == (name.ends_with('/') ? 1 : 0))
                bench.host.add({bench.folder.path(name.substr(0, name.find('/')))});
        setSteps(bench.host, test.steps);
        bench.host.preview();
        const auto before = bench.shown();
        bench.settle(changes(bench.folder, test.pins));
        for (const bool rereads : {false, true}) {
            if (rereads)
                bench.host.engine.rereadAtNextPreview();
            bench.host.preview();
            EXPECT_EQ(bench.shown(), split(test.finalNames));
            auto told = split(test.problems);
            for (std::string& one : told)
                std::ranges::replace(one, ':', ' ');
            EXPECT_EQ(bench.problems(), told);
            EXPECT_EQ(bench.host.counters().numberOfFilesThatNeedRenaming, test.toRename);
            EXPECT_EQ(bench.host.counters().totalNumberOfFiles, test.total);
        }
        bench.settle([&] {
            std::vector<NamePins::Change> none;
            bench.pins.forEach([&](const std::string& path, auto&) { none.push_back({path, "", false}); });
            return none;
        }());
        EXPECT_TRUE(bench.pins.isEmpty());
        bench.host.preview();
        EXPECT_EQ(bench.shown(), before);
    }
}

/// What is pinned and left out, as "path=name" and "-path", after a run of renames.
TEST(NamePins, GoWithTheirItems) {
    struct Case {
        const char *name, *onDisk, *steps, *pins, *happens, *left;
        bool namesCount = true;
    };
    const char* const none = "Make uppercase active=0";
    const Case cases[] = {
        {"who got the name is not pinned any more", "a b", none, "a=x -b", "", "-b"},
        {"a pair", "a b", none, "a=b b=a", "", ""},
        {"one fails and stays pinned", "a b", none, "a=x b=c", "write c", "b=c"},
        {"what lies in a folder that moved", "f/ f/g/ f/g/a f/b", "Add to end string=1", "-f/g/a f/g=h -f/b",
         "", "-f1/b -f1/h/a"},
        {"what fails in it", "f/ f/a f/b", none, "f=g f/a=c", "write f/c", "g/a=c"},
        {"names that don't count stay with the item", "a", "Add to end string=1", "a=x", "", "a1=x", false},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        PinBench bench;
        bench.make(split(test.onDisk));
        for (const std::string& name : split(test.onDisk))
            if (const std::string top = name.substr(0, name.find('/')); top + "/" == name || top == name)
                bench.host.add({bench.folder.path(top)});
        setSteps(bench.host, test.steps);
        bench.settle(changes(bench.folder, test.pins));
        bench.pins.setNamesCount(test.namesCount);
        bench.settle({});
        bench.host.preview();
        bench.happens(test.happens);
        bench.rename();
        std::vector<std::string> left;
        bench.pins.forEach([&](const std::string& path, const NamePins::Pin& pin) {
            left.push_back(pin.isLeftOut ? "-" + bench.relative(path)
                                         : bench.relative(path) + "=" + pin.name);
        });
        std::ranges::sort(left);
        EXPECT_EQ(left, split(test.left));
    }
}

TEST(NamePins, AreForgottenWithWhatIsNotOnTheListAnyMore) {
    PinBench bench;
    bench.make(split("a b c f/ f/x"));
    for (const char* name : {"a", "b", "c", "f"})
        bench.host.add({bench.folder.path(name)});
    setSteps(bench.host, "Make uppercase");
    bench.settle(changes(bench.folder, "a=1 b=2 -c f/x=3"));
    bench.host.preview();
    bench.happens("remove a");
    bench.host.preview(); // it is still listed, as what is gone
    EXPECT_EQ(bench.pins.named(), 3U);
    bench.host.sourceItems.removeItem(bench.folder.path("a"));
    bench.host.engine.rereadAtNextPreview();
    bench.host.preview();
    bench.host.loop.runPosted();
    EXPECT_EQ(bench.pins.find(bench.folder.path("a")), nullptr);
    bench.host.sourceItems.removeItem(bench.folder.path("c"));
    bench.host.set("processSubfolders", 0);
    bench.host.engine.rereadAtNextPreview();
    bench.host.preview();
    bench.host.loop.runPosted();
    EXPECT_EQ(bench.pins.leftOut(), 0U);
    EXPECT_EQ(bench.pins.named(), 2U) << "what is not read for the moment is pinned all the same";
}

/// Whatever the chain: who has nothing settled by hand sees what he saw before, names that are settled
/// stand, all others are distinct from them, and taking all back leaves no trace.
TEST(NamePins, ChangeNothingElseWithRandomChains) {
    RandomChains chains(7);
    const auto some = [&](const std::vector<std::string>& of) { return of[chains.below(of.size())]; };
    const std::vector<std::string> names{"IMG_1.jpg", "b.txt", "B", "c", "1", "e\u0301", "\xFFx", "d.jpg"};
    for (int round = 0; round < 150; ++round) {
        SCOPED_TRACE(round);
        PinBench bench;
        bench.make(names);
        bench.make({"f/", "f/b.txt", "f/2"});
        for (const std::string& name : names)
            bench.host.add({bench.folder.path(name)});
        bench.host.add({bench.folder.path("f")});
        bench.host.composite.setFlatParameterList(chain({chains.knownStep(), chains.knownStep()}));
        bench.host.preview();
        const auto before = bench.shown();
        const auto problems = bench.problems();
        const std::int32_t count = bench.host.counters().numberOfFilesThatNeedRenaming;
        std::vector<NamePins::Change> settled;
        for (auto left = 1 + chains.below(3); left > 0; --left)
            settled.push_back({bench.folder.path(some(names)),
                               chains.below(2) == 0 ? std::optional(some(names) + "x") : std::nullopt,
                               chains.below(3) == 0});
        bench.settle(settled);
        bench.host.preview();
        std::map<std::string, int> uses;
        for (const auto& [path, name] : bench.host.finalNames())
            if (path.find("/f/") == std::string::npos)
                ++uses[text::toUtf8(text::lowercased(text::fromBytes(name)))];
        bench.pins.forEach([&](const std::string& path, const NamePins::Pin& pin) {
            const std::string kept = path.substr(path.rfind('/') + 1);
            const std::string& wanted = pin.isLeftOut ? kept : pin.name;
            EXPECT_EQ(bench.host.finalNames()[path], wanted);
            uses[text::toUtf8(text::lowercased(text::fromBytes(wanted)))] = 0;
        });
        for (const auto& [name, number] : uses)
            EXPECT_LE(number, 1) << name;
        for (NamePins::Change& change : settled)
            change = {change.path, "", false};
        bench.settle(settled);
        for (int preview = 0; preview < 2; ++preview) {
            bench.host.preview();
            EXPECT_EQ(bench.shown(), before);
            EXPECT_EQ(bench.problems(), problems);
            EXPECT_EQ(bench.host.counters().numberOfFilesThatNeedRenaming, count);
        }
    }
}

} // namespace
} // namespace tavrin::test
