#include "platform/files/ItemCopy.h"

#include "common/Testing.h"

namespace tavrin::test {

/// What can be copied whole lies there whole, and of all else nothing.
TEST(ItemCopy, CopiesWholeTreesOrNothing) {
    TemporaryFolder folder;
    folder.write("from/a", "1");
    folder.write("from/b/c", "2");
    folder.link("from/b/link", "nowhere");
    folder.write("taken", "3");
    std::string deep = "deep";
    for (int depth = 0; depth < 65; ++depth)
        deep += "/d";
    folder.makeFolder(deep);
    const auto before = folder.tree();
    const auto copy = [&](const char* from, const char* to, int mostEntries) {
        return copyItem(folder.path(from), folder.path(to), mostEntries);
    };
    EXPECT_EQ(copy("from", "to", 4), EFBIG);
    EXPECT_EQ(copy("from", "taken", 5), EEXIST);
    EXPECT_EQ(copy("from", "from/b/to", 50), EINVAL);
    EXPECT_EQ(copy("deep", "to", 500), ELOOP);
    EXPECT_EQ(folder.tree(), before);
    EXPECT_EQ(copy("from", "to", 5), 0);
    EXPECT_EQ(folder.tree().size(), before.size() + 5);
    EXPECT_EQ(folder.read("to/b/c"), "2");
    EXPECT_EQ(folder.kind("to/b/link"), FileStatus::Kind::link);
}

} // namespace tavrin::test
