#include "engine/naming/SortingValues.h"

#include "common/TemporaryFolder.h"
#include "platform/metadata/FileManager.h"
#include "support/text/Text.h"

#include <gtest/gtest.h>

#include <regex>

namespace tavrin::test {
namespace {

TEST(SortingValues, GiveOneValueForBothSettingsOfAPair) {
    FileManager files;
    FileManager::setInstance(&files);
    const TemporaryFolder folder;
    const std::string path = folder.write("img7.txt", "12345");
    const SortingValues values(true, false);
    for (int setting = 0; setting < 12; setting += 2)
        EXPECT_EQ(values.getSortingValueForPath(path, setting),
                  values.getSortingValueForPath(path, setting + 1));
    const double modified = *files.fileModificationDate(path);
    EXPECT_EQ(values.getSortingValueForPath(path, 0), PropertyValue(u"img7.txt"));
    EXPECT_EQ(values.getSortingValueForPath(path, 2), PropertyValue(modified));
    EXPECT_EQ(values.getSortingValueForPath(path, 6), PropertyValue(u"0000000000000005"));
    EXPECT_EQ(values.getSortingValueForPath(path, 8), PropertyValue(FileManager::distantPast));
    EXPECT_EQ(SortingValues(false, false).getSortingValueForPath(path, 8), PropertyValue(0.0));
    EXPECT_EQ(values.getSortingValueForPath(path, 10),
              PropertyValue(u"img00000000000000000000000000000007.txt"));
    for (const int setting : {-1, 13, 99})
        EXPECT_EQ(values.getSortingValueForPath(path, setting), PropertyValue(u"cheers"));
    FileManager::setInstance(nullptr);
}

TEST(SortingValues, MakeVersionFourUuidsAndPaddedDates) {
    const std::regex form("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");
    const std::string one = SortingValues::createUUID();
    EXPECT_TRUE(std::regex_match(one, form)) << one;
    EXPECT_NE(one, SortingValues::createUUID());
    EXPECT_EQ(SortingValues::formatDate(1.5), "000000000000001.5000");
    EXPECT_EQ(SortingValues::formatDate(-1.5), "-00000000000001.5000");
}

} // namespace
} // namespace tavrin::test
