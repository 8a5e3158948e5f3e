#include "RenameBench.h"
#include "common/FailingFileSystem.h"

#include <gtest/gtest.h>

namespace tavrin::test {

namespace {

/// A small plan, what must come out, and at what price.
struct Case {
    const char* title;
    const char* plan;
    const char* after;
    int renamed;
    std::size_t diskRenames;
    const char* sources; ///< afterwards
};

const std::vector<Case> cases{
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

} // namespace

TEST(Rename, SmallPlans) {
    for (const Case& one : cases) {
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

TEST(Rename, OneLookAndOneRenamePerItem) {
    RenameBench bench;
    std::string plan;
    for (int i = 0; i < 1200; ++i)
        plan += "f/" + std::to_string(i) + ">new" + std::to_string(i) + " ";
    bench.plan(plan);
    FailingFileSystem counting;
    bench.rename();
    EXPECT_EQ(bench.renamed(), 1200);
    EXPECT_EQ(counting.callCount(FileCall::rename), 1200U);
    EXPECT_EQ(counting.callCount(FileCall::status), 1201U); // and one at the folder
    EXPECT_EQ(counting.callCount(FileCall::openFolder), 1U);
}

} // namespace tavrin::test
