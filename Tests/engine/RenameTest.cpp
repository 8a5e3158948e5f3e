#include "RenameBench.h"
#include "common/FailingFileSystem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavrin::test {

namespace {

/// A small tree, the names that its items are to have, and what must come out.
struct Case {
    const char* title;
    std::vector<std::string> before; ///< what lies at the top goes on the list
    std::vector<std::pair<std::string, std::u16string>> plan;
    RenameBench::Tree after; ///< content, that is the name before, by the name after
    int renamed;
    std::size_t diskRenames;
    std::vector<std::string> sources; ///< afterwards
};

const std::vector<Case> cases{
    {"nothing to do", {"a"}, {}, {{"a", "a"}}, 0, 0, {"a"}},
    {"one", {"a", "z"}, {{"a", u"b"}}, {{"b", "a"}, {"z", "z"}}, 1, 1, {"z", "b"}},
    {"swap", {"a", "b"}, {{"a", u"b"}, {"b", u"a"}}, {{"a", "b"}, {"b", "a"}}, 2, 1, {"a", "b"}},
    {"swap of names wanted in another case, which are free where case counts",
     {"a", "b"},
     {{"a", u"B"}, {"b", u"A"}},
     {{"A", "b"}, {"B", "a"}},
     2,
     2,
     {"A", "B"}},
    {"swap of case", {"a", "A"}, {{"a", u"A"}, {"A", u"a"}}, {{"a", "A"}, {"A", "a"}}, 2, 1, {"A", "a"}},
    {"chain",
     {"a", "b", "c"},
     {{"c", u"d"}, {"b", u"c"}, {"a", u"b"}},
     {{"d", "c"}, {"c", "b"}, {"b", "a"}},
     3,
     3,
     {"d", "c", "b"}},
    {"cycle with a bystander",
     {"a", "b", "c", "z"},
     {{"a", u"b"}, {"b", u"c"}, {"c", u"a"}},
     {{"b", "a"}, {"c", "b"}, {"a", "c"}, {"z", "z"}},
     3,
     2,
     {"z", "b", "c", "a"}},
    {"cycle beside a swap and a chain",
     {"a", "b", "c", "p", "q", "x", "y"},
     {{"a", u"b"}, {"b", u"c"}, {"c", u"a"}, {"p", u"q"}, {"q", u"p"}, {"x", u"y"}, {"y", u"w"}},
     {{"b", "a"}, {"c", "b"}, {"a", "c"}, {"q", "p"}, {"p", "q"}, {"y", "x"}, {"w", "y"}},
     7,
     5,
     {"w", "y", "p", "q", "b", "c", "a"}},
    {"cycle beside an item that is to be composed differently: it stays",
     {"a", "b", "c", "e\u0301"},
     {{"a", u"b"}, {"b", u"c"}, {"c", u"a"}, {"e\u0301", u"\u00E9"}},
     {{"b", "a"}, {"c", "b"}, {"a", "c"}, {"e\u0301", "e\u0301"}},
     3,
     2,
     {"e\u0301", "b", "c", "a"}},
    {"case alone",
     {"report.txt"},
     {{"report.txt", u"REPORT.TXT"}},
     {{"REPORT.TXT", "report.txt"}},
     1,
     1,
     {"REPORT.TXT"}},
    {"the very name goes before one that differs in case",
     {"A", "a", "x"},
     {{"A", u"y"}, {"x", u"A"}},
     {{"a", "a"}, {"y", "A"}, {"A", "x"}},
     2,
     2,
     {"a", "y", "A"}},
    {"a folder and its contents",
     {"f/", "f/a", "f/g/", "f/g/b"},
     {{"f", u"F2"}, {"f/a", u"b"}, {"f/g", u"a"}, {"f/g/b", u"c"}},
     {{"F2/b", "f/a"}, {"F2/a/c", "f/g/b"}},
     4,
     4,
     {"F2"}},
    {"folders that swap, with contents that swap",
     {"f/", "f/a", "f/b", "g/", "g/a"},
     {{"f", u"g"}, {"g", u"f"}, {"f/a", u"b"}, {"f/b", u"a"}},
     {{"g/a", "f/b"}, {"g/b", "f/a"}, {"f/a", "g/a"}},
     4,
     2,
     {"f", "g"}},
    {"a slash in a name is a colon on disk and leads nowhere",
     {"a", "p:q", "r"},
     {{"a", u"../x/y"}, {"p:q", u"r"}, {"r", u"p/q"}},
     {{"..:x:y", "a"}, {"r", "p:q"}, {"p:q", "r"}},
     3,
     2,
     {"..:x:y", "p:q", "r"}},
    {"names that are no UTF-8",
     {"f/", "f/\xE9", "g/", "g/1\xE9", "g/2\xE9", "h/", "h/1\xE9", "h/2\xE9", "h/3\xE9"},
     {{"f/\xE9", u"\xDCE9!"},
      {"g/1\xE9", u"2\xDCE9"},
      {"g/2\xE9", u"1\xDCE9"},
      {"h/1\xE9", u"2\xDCE9"},
      {"h/2\xE9", u"3\xDCE9"},
      {"h/3\xE9", u"1\xDCE9"}},
     {{"f/\xE9!", "f/\xE9"},
      {"g/2\xE9", "g/1\xE9"},
      {"g/1\xE9", "g/2\xE9"},
      {"h/2\xE9", "h/1\xE9"},
      {"h/3\xE9", "h/2\xE9"},
      {"h/1\xE9", "h/3\xE9"}},
     6,
     4,
     {"f", "g", "h"}},
};

std::vector<std::string> topOf(const std::vector<std::string>& names) {
    std::vector<std::string> top;
    for (const std::string& name : names) {
        if (name.find('/') == std::string::npos || name.find('/') == name.size() - 1)
            top.push_back(name);
    }
    return top;
}

} // namespace

TEST(Rename, SmallPlans) {
    for (const Case& one : cases) {
        SCOPED_TRACE(one.title);
        RenameBench bench;
        bench.make(one.before);
        bench.read(topOf(one.before));
        for (const auto& [name, finalName] : one.plan)
            bench.setFinalName(name, finalName);
        FailingFileSystem counting;
        bench.rename();
        EXPECT_EQ(bench.files(), one.after);
        EXPECT_EQ(bench.renamed(), one.renamed);
        EXPECT_EQ(counting.nameChangeCount(), one.diskRenames);
        EXPECT_EQ(bench.sourcePaths(), one.sources);
        EXPECT_TRUE(bench.reports.empty());
    }
}

TEST(Rename, OneLookAndOneRenamePerItem) {
    RenameBench bench;
    std::vector<std::string> names{"f/"};
    for (int i = 0; i < 1200; ++i)
        names.push_back("f/" + std::to_string(i));
    bench.make(names);
    bench.read({"f/"});
    for (std::size_t i = 1; i < names.size(); ++i)
        bench.setFinalName(names[i], u"new " + std::u16string(names[i].begin() + 2, names[i].end()));
    FailingFileSystem counting;
    bench.rename();
    EXPECT_EQ(bench.renamed(), 1200);
    EXPECT_EQ(counting.callCount(FileCall::rename), 1200U);
    EXPECT_EQ(counting.callCount(FileCall::status), 1201U); // and one at the folder
    EXPECT_EQ(counting.callCount(FileCall::openFolder), 1U);
}

TEST(Rename, ASecondRunFindsNothingToDo) {
    RenameBench bench;
    bench.make({"f/", "f/One.TXT", "f/two", "f/G/", "f/G/Three"});
    bench.host.add({bench.disk.path("f")});
    bench.host.setSteps({{"Make lowercase", {{"fragmentSelection", 0}}}});
    bench.host.preview();
    bench.host.renameThenContinue();
    EXPECT_EQ(bench.renamed(), 3);
    const RenameBench::Tree after{{"f/one.txt", "f/One.TXT"}, {"f/two", "f/two"}, {"f/g/three", "f/G/Three"}};
    EXPECT_EQ(bench.files(), after);

    bench.host.preview();
    FailingFileSystem counting;
    bench.host.renameThenContinue();
    EXPECT_EQ(bench.renamed(), 0);
    EXPECT_EQ(counting.callCount(), 0U);
    EXPECT_EQ(bench.files(), after);
}

} // namespace tavrin::test
