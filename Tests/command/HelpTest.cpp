#include "command/Workplace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <vector>

namespace tavrin::test {
namespace {

std::vector<std::string> linesOf(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

class Help : public testing::TestWithParam<std::string> {};

TEST_P(Help, FitsAScreenAndEndsWithThreeExamplesThatWork) {
    const Workplace workplace;
    const ProgramResult help = workplace.run("tvrn " + GetParam() + " --help");
    ASSERT_EQ(help.status, 0) << help.error;
    const std::vector<std::string> lines = linesOf(help.output);
    EXPECT_LE(lines.size(), 24u);
    for (const std::string& line : lines)
        EXPECT_LE(line.size(), 80u) << line;
    ASSERT_GT(lines.size(), 4u);
    EXPECT_EQ(lines[lines.size() - 4], "Examples:");
    for (std::size_t i = lines.size() - 3; i < lines.size(); ++i) {
        const ProgramResult example = workplace.run(lines[i]);
        EXPECT_EQ(example.status, 0) << lines[i] << "\n" << example.error;
        EXPECT_THAT(example.error, testing::IsEmpty()) << lines[i];
    }
}

INSTANTIATE_TEST_SUITE_P(All, Help,
                         testing::Values("", "preview", "rename", "history", "undo", "redo", "actions",
                                         "tags", "presets"),
                         [](const auto& test) { return test.param.empty() ? "overview" : test.param; });

} // namespace
} // namespace tavrin::test
