#include "StageTest.h"
#include "platform/files/FileSystem.h"
#include "store/rows/FileMO.h"
#include "support/text/Text.h"

#include <algorithm>
#include <map>
#include <ostream>

namespace tavrin::test {
namespace {

using Step = EngineTestHost::Step;

/// Files on disk (a "/" at the end for folders), all of them in "top", the list, the settings and steps; and
/// what the preview shows of each changed row, with the number of rows to rename.
struct NamesCase {
    const char* name;
    std::vector<std::string> onDisk;
    std::vector<std::string> listed;
    PropertyDictionary settings;
    std::vector<Step> steps;
    std::map<std::string, std::string> finalNames;
    int toRename;
};

std::ostream& operator<<(std::ostream& out, const NamesCase& test) { return out << test.name; }

class ComputeNamesTest : public StageTest {
  protected:
    std::map<std::string, std::string> shown() {
        std::map<std::string, std::string> names;
        for (const auto& [path, finalName] : host.finalNames())
            names.emplace(relative(path), finalName);
        return names;
    }
};

class NamesCases : public ComputeNamesTest, public ::testing::WithParamInterface<NamesCase> {};

TEST_P(NamesCases, GivesNames) {
    const NamesCase& test = GetParam();
    for (const std::string& line : test.onDisk) {
        if (line.ends_with("/"))
            folder.makeFolder(line.substr(0, line.size() - 1));
        else
            folder.write(line);
    }
    for (const std::string& name : test.listed)
        host.add({folder.path(name)});
    host.set("previewConflictResolution", false);
    for (const auto& [key, value] : test.settings)
        host.set(key, value);
    host.setSteps(test.steps);
    host.preview();
    EXPECT_EQ(shown(), test.finalNames);
    EXPECT_EQ(host.counters().numberOfFilesThatNeedRenaming, test.toRename);
    host.preview();
    EXPECT_EQ(shown(), test.finalNames) << "the second preview starts from the names on disk";
}

const PropertyDictionary subfolders{{"processSubfolders", 1}};
const Step upper{"Make uppercase", {{"fragmentSelection", 0}}};

Step numbers(PropertyDictionary parameters) {
    parameters.emplace("prefix", u"");
    parameters.emplace("padding", 1);
    return {"Produce numbered list", std::move(parameters)};
}

const NamesCase namesCases[] = {
    {"one step", {"a.txt", "B"}, {"a.txt", "B"}, {}, {upper}, {{"a.txt", "A.TXT"}, {"B", "B"}}, 1},
    {"each step works on the result of the one before, inactive ones are left out",
     {"a"},
     {"a"},
     {},
     {{"Add to end", {{"string", u"x"}}},
      {"Make uppercase", {{"active", 0}}},
      {"Add to end", {{"string", u"y"}}},
      {"Make lowercase", {{"active", 2}}}},
     {{"a", "axy"}},
     1},
    {"back to the name", {"a"}, {"a"}, {}, {upper, {"Make lowercase", {}}}, {{"a", "a"}}, 0},
    {"no step is active", {"a"}, {"a"}, {}, {{"Make uppercase", {{"active", 0}}}}, {{"a", "a"}}, 0},
    {"a colon becomes a slash", {"a"}, {"a"}, {}, {{"Add to end", {{"string", u":b"}}}}, {{"a", "a/b"}}, 1},
    {"a colon on disk is a slash to the actions",
     {"a:b"},
     {"a:b"},
     {},
     {{"Replace text", {{"searchTerm", u"/"}, {"replacementTerm", u"-"}}}},
     {{"a:b", "a-b"}},
     1},
    {"folders that are not processed take no rank",
     {"b", "a/", "c"},
     {"a", "b", "c"},
     {{"processFolders", 0}},
     {numbers({})},
     {{"a", "a"}, {"b", "1"}, {"c", "2"}},
     2},
    {"composition alone is no difference",
     {"e\u0301"},
     {"e\u0301"},
     {},
     {{"Replace text", {{"searchTerm", u"e\u0301"}, {"replacementTerm", u"\u00e9"}}}},
     {{"e\u0301", "\u00e9"}},
     0},
    {"bytes that are no text go through", {"\xFFx"}, {"\xFFx"}, {}, {upper}, {{"\xFFx", "\xFFX"}}, 1},
    {"ranks by name across folders",
     {"t/a/2", "t/b/1", "t/3"},
     {"t"},
     {{"processSubfolders", 1}, {"processFolders", 0}},
     {numbers({{"sortingMode", 0}})},
     {{"t", "t"}, {"t/a", "a"}, {"t/b", "b"}, {"t/a/2", "2"}, {"t/b/1", "1"}, {"t/3", "3"}},
     0},
    {"each folder counts by itself, also an empty one",
     {"t/a/x", "t/a/y", "t/b/z", "t/e/"},
     {"t"},
     subfolders,
     {numbers({{"sortEachFolderSeparately", 1}, {"sortingMode", 0}})},
     {{"t", "1"}, {"t/a", "1"}, {"t/b", "2"}, {"t/e", "3"}, {"t/a/x", "1"}, {"t/a/y", "2"}, {"t/b/z", "1"}},
     7},
};

INSTANTIATE_TEST_SUITE_P(Chains, NamesCases, ::testing::ValuesIn(namesCases));

TEST_F(ComputeNamesTest, HiddenRowsAreNumberedByFolderAllTheSame) {
    folder.write("t/x");
    host.add({folder.path("t")});
    host.set("processSubfolders", 1);
    host.setSteps({upper});
    host.preview();
    host.set("processSubfolders", 0);
    host.setSteps({numbers({{"sortEachFolderSeparately", 1}})});
    host.preview();
    EXPECT_EQ(shown(), (std::map<std::string, std::string>{{"t", "1"}, {"t/x", "1"}}));
    EXPECT_EQ(host.counters().numberOfFilesThatNeedRenaming, 1);
    EXPECT_EQ(host.counters().totalNumberOfFiles, 1);
    EXPECT_EQ(host.counters().totalNumberOfFilesSelectedOrNot, 2);
}

TEST_F(ComputeNamesTest, AListThatIsLostBeforeTheRunChangesNoName) {
    const std::string list = folder.write("list", "b\n");
    host.add({folder.write("a")});
    host.setSteps({{"Rename from list", {{"listFilePath", text::fromBytes(list)}}},
                   {"Add to end", {{"string", u"x"}}}});
    host.preview();
    EXPECT_EQ(shown().at("a"), "bx");
    folder.remove("list");
    host.preview();
    EXPECT_EQ(shown().at("a"), "a");
    ASSERT_EQ(host.errors().size(), 1U);
    EXPECT_NE(host.errors().front().find(list + ": File does not exist."), std::string::npos);
}

/// Dates, sizes and their absence, from the disk into the rows.
TEST_F(ComputeNamesTest, SortingDataIsReadOncePerRow) {
    folder.write("f", "12345");
    folder.write("d/.hidden/x", "123");
    folder.write("d/y", "1234");
    folder.write("gone");
    host.add({folder.path("f"), folder.path("d"), folder.path("gone")});
    folder.remove("gone");
    host.set("accurateFolderSize", 1);
    host.preview();
    StoreContext context(*host.persistentStoreCoordinator(), StoreContext::MergePolicy::storeWins);
    const auto rowOf = [&](const char* name) {
        context.reset();
        return context.row(context.fileWithPath(folder.path(name)));
    };
    FileStatus status;
    ASSERT_EQ(FileSystem::sharedInstance().status(folder.path("f"), status), 0);
    const NodeRow file = rowOf("f");
    EXPECT_EQ(file.modDate, status.modificationDate);
    EXPECT_EQ(file.crDate, status.creationDate);
    EXPECT_EQ(file.size, 5U);
    EXPECT_EQ(FileMO(context, context.fileWithPath(folder.path("f"))).exifDate(), std::nullopt);
    EXPECT_EQ(rowOf("d").size, 7U);
    EXPECT_EQ(rowOf("gone").modDate, 0.0);
    EXPECT_EQ(rowOf("gone").size, 0U);

    folder.write("f", "1234567");
    host.set("retrieveEXIFInformation", false);
    host.set("accurateFolderSize", 0);
    host.add({folder.makeFolder("e"), folder.write("g.jpg")});
    host.preview();
    EXPECT_EQ(rowOf("f").size, 5U) << "what has its values is not read again";
    EXPECT_EQ(rowOf("e").size, 0U);
    EXPECT_EQ(rowOf("g.jpg").exif, 0.0);
}

/// A list of 2500 rows, so that every pass needs more than one batch, on both kinds of store.
class ManyRowsTest : public ::testing::TestWithParam<ItemStore::Kind> {};

TEST_P(ManyRowsTest, EveryPassReachesEveryRow) {
    constexpr int files = 2500;
    TemporaryFolder folder;
    EngineTestHost host(GetParam() == ItemStore::Kind::file ? EngineTestHost::inFile(folder.path(), 0)
                                                            : ItemStore::Options());
    for (int i = 0; i < files; ++i)
        folder.write("t/d" + std::to_string(i % 7) + "/f" + std::to_string(i));
    host.add({folder.path("t")});
    host.set("processSubfolders", 1);
    host.setSteps({upper, {"Add to end", {{"string", u"!"}}}, numbers({{"sortEachFolderSeparately", 1}})});
    host.preview();
    EXPECT_EQ(host.counters().totalNumberOfFiles, files + 8);
    EXPECT_EQ(host.counters().numberOfFilesThatNeedRenaming, files + 8);
    host.setSteps({{"Add to end", {{"active", 0}}}});
    host.preview();
    EXPECT_EQ(host.counters().numberOfFilesThatNeedRenaming, 0);
    host.saveList(1, false, folder.path("list"));
    const std::string list = folder.read("list");
    EXPECT_EQ(std::count(list.begin(), list.end(), '\n'), files + 8);
}

INSTANTIATE_TEST_SUITE_P(Stores, ManyRowsTest,
                         ::testing::Values(ItemStore::Kind::memory, ItemStore::Kind::file));

} // namespace
} // namespace tavrin::test
