#include "RenameBench.h"
#include "common/FailingFileSystem.h"
#include "engine/naming/NameProblems.h"
#include "engine/naming/ResolveFileNameConflictsStage.h"
#include "engine/reading/AddFileSortingDataStage.h"
#include "engine/reading/FolderNotes.h"
#include "platform/files/Descriptor.h"
#include "platform/metadata/FileManager.h"
#include "support/text/PathParts.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>

namespace tavrin::test {
namespace {

struct FinalName {
    std::u16string name;
    bool differs;
    std::optional<ToldProblem> problem;
};

/// A folder of files and links, on the list or not, whose names are to be permuted, doubled, spoilt.
struct Crowd {
    Crowd(unsigned seed, bool ignoresCase, bool isLarge) : random(seed) {
        for (int i = 0; i < (isLarge ? 120 : 6); ++i)
            alphabet.push_back(isLarge ? "n" + std::to_string(i)
                                       : std::string(1, static_cast<char>('a' + i)));
        if (ignoresCase)
            alphabet.insert(alphabet.end(), {"A", "B", "C"});
        else
            alphabet.insert(alphabet.end(), {"\u00E9", "e\u0301", "caf\xE9"});
    }

    [[nodiscard]] bool oneIn(unsigned n) { return random() % n == 0; }
    const std::string& anyName() { return alphabet[random() % alphabet.size()]; }
    std::u16string anyWish() {
        static const std::vector<std::u16string> spoilt{
            u"", u".", u"..", {u'a', 0}, u"\xD800", u"\xDC80", std::u16string(86, u'\u4E00')};
        return oneIn(12) ? spoilt[random() % spoilt.size()] : text::fromBytes(anyName());
    }

    /// Makes the items, reads those on the list, which may be all that are not hidden, and gives them names.
    void setUp(RenameBench& bench, bool ignoresCase, bool isWalked,
               const std::function<void()>& beforeReading) {
        if (isWalked)
            for (std::string& name : alphabet)
                if (oneIn(6))
                    name.insert(0, ".");
        std::set<std::string> keys;
        for (const std::string& name : alphabet) {
            if (oneIn(4) ||
                (ignoresCase && !keys.insert(text::toUtf8(text::caseFolded(text::fromBytes(name)))).second))
                continue;
            if (oneIn(9))
                bench.folder.link("f/" + name, "/etc/passwd");
            else
                bench.folder.write("f/" + name, name);
            if (isWalked ? name.front() != '.' : !oneIn(5))
                listed.push_back("f/" + name);
        }
        beforeReading();
        bench.read(isWalked ? std::vector<std::string>{"f"} : listed);
        for (const std::string& name : listed)
            if (!oneIn(4))
                bench.setFinalName(name, anyWish());
    }

    /// An item goes and another one comes, at another time than that of the folder's last change.
    void change(RenameBench& bench, bool ignoresCase) {
        FileStatus before;
        FileStatus now;
        ASSERT_EQ(FileSystem::sharedInstance().status(bench.folder.path("f"), before), 0);
        for (now = before; now.changeDate == before.changeDate; bench.folder.remove("f/clock")) {
            bench.folder.write("f/clock");
            ASSERT_EQ(FileSystem::sharedInstance().status(bench.folder.path("f"), now), 0);
        }
        if (!listed.empty())
            bench.folder.remove(listed.front());
        if (const std::string name = "f/" + alphabet.back(); !ignoresCase && !bench.folder.kind(name))
            bench.folder.write(name, "intruder");
    }

    std::mt19937 random;
    std::vector<std::string> alphabet;
    std::vector<std::string> listed;
};

std::map<std::string, FinalName> finalNames(RenameBench& bench) {
    StoreContext context(*bench.host.persistentStoreCoordinator(), StoreContext::MergePolicy::contextWins);
    std::map<std::string, FinalName> found;
    for (const RowId row : context.fetch({FetchEntity::file, Predicate::always(), {}, 0}))
        found[bench.relative(context.fullPath(row))] = {context.finalName(row), context.row(row).diff,
                                                        problemOf(context, row)};
    return found;
}

} // namespace

/// In folders that are asked item by item, listed, or known from reading; on those that ignore case too.
TEST(ProblemLaws, WhatIsForeseenBefallsTheRenameAndNothingElse) {
    std::map<std::string, int> seen;
    for (unsigned seed = 0; seed < 1000; ++seed) {
        const int rule = static_cast<int>(seed % 2);
        const bool ignoresCase = seed / 2 % 3 == 0;
        const bool isLarge = seed / 6 % 2 == 0;
        SCOPED_TRACE(
            fmt::format("seed {}, rule {}, ignores case {}, large {}", seed, rule, ignoresCase, isLarge));
        Crowd crowd(seed, ignoresCase, isLarge);
        RenameBench bench({}, RenameBench::inMemory());
        FailingFileSystem disk;
        disk.ignoresCase = ignoresCase;
        bench.host.set("onConflict", rule);
        bench.host.set("conflictResolutionScheme", 0);
        const bool isWalked = seed / 12 % 2 == 0;
        disk.ages = isWalked ? 10 : 0;
        bench.folder.makeFolder("f");
        const auto lockOne = [&] {
            if (!crowd.listed.empty())
                disk.locked.insert(PathParts(crowd.listed[seed % crowd.listed.size()]).name.data());
        };
        crowd.setUp(bench, ignoresCase, isWalked, [&] {
            if (seed % 7 == 0)
                lockOne();
        });
        if (seed % 4 != 0) // of what has no values for sorting nothing is known beforehand
            bench.run<AddFileSortingDataStage>();
        const bool changes = seed % 5 == 0;
        if (changes)
            crowd.change(bench, ignoresCase);
        disk.reset();
        bench.run<ResolveFileNameConflictsStage>();
        if (rule == 0 && seed % 7 == 1) {
            lockOne();
            bench.run<ResolveFileNameConflictsStage>(ResolveFileNameConflictsStage::Task::lookAnew);
        }
        if (isWalked && !changes) {
            EXPECT_EQ(disk.callCount(FileCall::entries), 0U) << "it is known";
        }

        RenameBench::Tree expected = bench.files();
        const RenameBench::Tree before = expected;
        const auto foreseen = finalNames(bench);
        for (const auto& [path, row] : foreseen)
            if (row.differs && !row.problem)
                expected.erase(path);
        for (const auto& [path, row] : foreseen) {
            if (row.differs && !row.problem)
                expected["f/" + text::toBytes(row.name).value()] = before.at(path);
            if (row.problem)
                ++seen[std::string(row.problem->code)];
            if (rule == 1 && row.problem &&
                (row.problem->code == "conflict" || row.problem->code == "taken")) {
                EXPECT_FALSE(row.differs) << "left out";
            }
        }
        bench.rename();
        ASSERT_EQ(bench.files(), expected);
        for (const ProblemReport& report : bench.reports) {
            const FinalName& row = foreseen.at(bench.relative(report.fullPath));
            ASSERT_TRUE(row.problem) << report.fullPath << report.message;
            const bool isOfRing = report.title != "Could not change a file name";
            EXPECT_TRUE(isOfRing || report.message.find(row.problem->message) != std::string::npos)
                << report.message << " instead of " << row.problem->message;
        }
    }
    for (const char* code : {"empty", "forbidden", "cut-character", "too-long", "taken", "conflict",
                             "read-only", "link", "gone"})
        EXPECT_GT(seen[code], 5) << code;
}

TEST(Problems, OfFoldersAreThoseOfTheRename) {
    const std::pair<int, const char*> cases[] = {{EROFS, "Read-only file system"},
                                                 {EACCES, "You may not rename anything in this folder"},
                                                 {EPERM, "You may not rename anything in this folder"},
                                                 {0, "The folder has been replaced by another"},
                                                 {ENOENT, "No such file"}};
    for (const auto& [error, words] : cases) {
        SCOPED_TRACE(words);
        RenameBench bench;
        bench.plan("f/ f/a>b f/c");
        FailingFileSystem disk;
        for (const FileCall call : {FileCall::access, FileCall::rename})
            disk.failKind(call, error == ENOENT ? 0 : error);
        if (error == 0)
            bench.happens("move f g, folder f, write f/a");
        if (error == ENOENT)
            bench.happens("move f g");
        bench.run<ResolveFileNameConflictsStage>();
        const auto foreseen = finalNames(bench);
        bench.rename();
        ASSERT_TRUE(foreseen.at("f/a").problem);
        EXPECT_FALSE(foreseen.at("f/c").problem) << "it is to stay";
        EXPECT_THAT(foreseen.at("f/a").problem->message, testing::StartsWith(words));
        ASSERT_EQ(bench.reports.size(), 1U);
        EXPECT_THAT(bench.reports.front().message, testing::HasSubstr(foreseen.at("f/a").problem->message));
    }
}

/// The one problem that is foreseen, which the rename has to tell in the same words.
std::string problemBeforeAndAfter(RenameBench& bench, const std::string& name) {
    bench.run<ResolveFileNameConflictsStage>();
    const auto foreseen = finalNames(bench).at(name).problem;
    bench.rename();
    EXPECT_EQ(bench.reports.size(), 1U);
    const std::string told = foreseen ? foreseen->message : "nothing";
    if (!bench.reports.empty()) {
        EXPECT_THAT(bench.reports.front().message, testing::HasSubstr(told));
    }
    return told;
}

TEST(Problems, OfPathsThatGetTooLong) {
    RenameBench bench;
    std::string deep;
    while (bench.folder.path(deep).size() < longestPath - 300)
        deep += std::string(200, 'd') + "/";
    bench.make({deep, deep + "a", deep + "b"});
    bench.read({std::string(200, 'd')});
    const std::size_t left = longestPath - bench.folder.path(deep + "a").size() + 1;
    ASSERT_LT(left, 255U);
    bench.setFinalName(deep + "a", std::u16string(left, u'a'));
    bench.setFinalName(deep + "b", std::u16string(left + 1, u'b'));
    EXPECT_EQ(problemBeforeAndAfter(bench, deep + "b"), "Path too long: 4096 of 4095 bytes");
    EXPECT_TRUE(bench.files().contains(deep + std::string(left, 'a')));
}

enum class Lock { immutable, appendOnly };

/// False where the file system knows no such locks, or only a privileged user may change them.
bool setLock(const std::string& path, Lock lock, bool isLocked) {
    const FileManager files;
    if (lock == Lock::immutable)
        return isLocked ? files.lockFile(path) : files.unlockFile(path);
    const Descriptor item(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    int flags = 0;
    if (!item || ::ioctl(item.get(), FS_IOC_GETFLAGS, &flags) != 0)
        return false;
    flags = isLocked ? flags | FS_APPEND_FL : flags & ~FS_APPEND_FL;
    return ::ioctl(item.get(), FS_IOC_SETFLAGS, &flags) == 0;
}

TEST(Problems, OfLockedFilesAndFolders) {
    for (const char* locked : {"f/a", "f"})
        for (const Lock lock : {Lock::immutable, Lock::appendOnly}) {
            SCOPED_TRACE(fmt::format("{}, {}", locked, static_cast<int>(lock)));
            RenameBench bench;
            bench.plan("f/ f/a>b f/c");
            bench.run<AddFileSortingDataStage>();
            if (!setLock(bench.folder.path(locked), lock, true))
                GTEST_SKIP() << "Nothing can be locked here.";
            EXPECT_EQ(problemBeforeAndAfter(bench, "f/a"), locked == std::string("f")
                                                               ? "You may not rename anything in this folder"
                                                               : "It is locked against changes");
            EXPECT_EQ(bench.files(), tree("f/a f/c"));
            EXPECT_TRUE(setLock(bench.folder.path(locked), lock, false));
        }
}

} // namespace tavrin::test
