#include "support/values/VersionComparison.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

namespace tavrin::test {
namespace {

/// A text of the table: "-" is the empty one, and "N*c" stands for the character N times.
std::string decoded(const std::string& word) {
    if (word == "-")
        return "";
    const std::size_t star = word.find('*');
    return star == std::string::npos ? word
                                     : std::string(std::stoul(word), word[star + 1]) + word.substr(star + 2);
}

/// The lines of a table in the folder of the test data, without comments and empty ones.
std::vector<std::vector<std::string>> tableRows(const std::string& name) {
    std::ifstream file(std::string(TAVRIN_TEST_DATA "/") + name);
    std::vector<std::vector<std::string>> rows;
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line.substr(0, line.find('#')));
        std::vector<std::string> row;
        for (std::string word; words >> word;)
            row.push_back(word);
        if (!row.empty())
            rows.push_back(std::move(row));
    }
    return rows;
}

TEST(VersionComparisonTest, FollowsTheTable) {
    const auto rows = tableRows("versions.txt");
    ASSERT_GT(rows.size(), 40u);
    for (const auto& row : rows) {
        ASSERT_EQ(row.size(), 4u) << row.front();
        const std::string a = decoded(row[1]);
        const std::string b = decoded(row[2]);
        const int result = row[0] == "update" ? VersionComparison::compareVersion(a, b)
                                              : VersionComparison::standardCompareVersion(a, b);
        EXPECT_EQ(result, std::stoi(row[3])) << row[0] << ' ' << row[1] << ' ' << row[2];
    }
}

TEST(VersionComparisonTest, TheStandardComparisonIsAntisymmetric) {
    for (const auto& row : tableRows("versions.txt")) {
        const std::string a = decoded(row[1]);
        const std::string b = decoded(row[2]);
        EXPECT_EQ(VersionComparison::standardCompareVersion(a, b),
                  -VersionComparison::standardCompareVersion(b, a))
            << row[1] << ' ' << row[2];
    }
}

TEST(VersionComparisonTest, CutsIntoChunksOfOneType) {
    using Chunks = std::vector<std::string_view>;
    const std::vector<std::pair<std::string_view, Chunks>> cases{
        {"", {}},
        {"10.4b12", {"10", ".", "4", "b", "12"}},
        {"..", {".", "."}},
        {"a-b.1", {"a-b", ".", "1"}},
        {"1\xC3\xA9", {"1", "\xC3\xA9"}},
    };
    for (const auto& [version, chunks] : cases)
        EXPECT_EQ(VersionComparison::splitVersionString(version), chunks) << version;
}

} // namespace
} // namespace tavrin::test
