#include "command/Transcript.h"

#include "command/Workplace.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <gtest/gtest.h>

#include <cctype>

namespace tavrin::test {
namespace {

void appendLines(const std::string& text, const std::string& mark, std::vector<std::string>& into) {
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        into.push_back(mark + text.substr(start, end - start));
        start = end + 1;
    }
}

/// What a step has shown, with "$PWD" for the folder that it ran in.
std::vector<std::string> shown(const ProgramResult& result, const std::string& folder) {
    std::vector<std::string> lines;
    appendLines(result.output, "", lines);
    appendLines(result.error, "! ", lines);
    if (result.status != 0)
        lines.push_back(fmt::format("[{}]", result.status));
    for (std::string& line : lines) {
        for (std::size_t at = 0; (at = line.find(folder, at)) != std::string::npos;)
            line.replace(at, folder.size(), "$PWD");
    }
    return lines;
}

class TranscriptTest : public testing::TestWithParam<Transcript> {};

TEST_P(TranscriptTest, ShowsWhatIsExpected) {
    SCOPED_TRACE(GetParam().file + ": " + GetParam().title);
    ASSERT_FALSE(GetParam().steps.empty());
    const Workplace workplace;
    for (const TranscriptStep& step : GetParam().steps) {
        const std::vector<std::string> lines = shown(workplace.run(step.line), workplace.folder().path());
        ASSERT_TRUE(matches(step.expected, lines)) << fmt::format(
            "$ {}\n{}\n--- expected:\n{}", step.line, fmt::join(lines, "\n"), fmt::join(step.expected, "\n"));
    }
}

std::vector<Transcript> allTranscripts() {
    std::vector<Transcript> all;
    for (const char* name :
         {"tasks", "conflicts", "output", "usage", "recipes", "files", "lists", "tags", "history"}) {
        const auto some = readTranscripts(fmt::format("{}/{}.transcript", TAVRIN_TEST_DATA, name));
        all.insert(all.end(), some.begin(), some.end());
    }
    return all;
}

std::string nameOf(const testing::TestParamInfo<Transcript>& info) {
    std::string name = info.param.file.substr(0, info.param.file.find('.')) + "_";
    for (const char c : info.param.title)
        name += std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
    return name;
}

INSTANTIATE_TEST_SUITE_P(All, TranscriptTest, testing::ValuesIn(allTranscripts()), nameOf);

} // namespace
} // namespace tavrin::test
