#include "command/Workplace.h"

#include <cctype>
#include <fnmatch.h>

namespace tavrin::test {

/// A line of shell and what it is to show: lines of standard output, then those of standard error behind "!
/// ", then the exit status in brackets unless it is 0.
struct TranscriptStep {
    std::string line;
    std::vector<std::string> expected;
};

/// Steps in one fresh folder, under a title that tells what they are about.
struct Transcript {
    std::string file;
    std::string title;
    std::vector<TranscriptStep> steps;
};

void PrintTo(const Transcript& transcript, std::ostream* stream) { *stream << transcript.title; }

namespace {

/// Reads transcripts: "== title" begins one, "$ " a step; what follows is expected. A line that begins with
/// "~ " is a pattern of the shell's kind for the rest of the line. Empty lines and "# " lines are passed
/// over.
std::vector<Transcript> readTranscripts(const std::string& path) {
    std::ifstream file(path);
    if (!file)
        throw std::runtime_error("cannot read " + path);
    std::vector<Transcript> transcripts;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line.starts_with("# "))
            continue;
        if (line.starts_with("== "))
            transcripts.push_back({path.substr(path.rfind('/') + 1), line.substr(3), {}});
        else if (line.starts_with("$ "))
            transcripts.back().steps.push_back({line.substr(2), {}});
        else
            transcripts.back().steps.back().expected.push_back(line);
    }
    return transcripts;
}

bool matches(const std::string& expected, const std::string& line) {
    return expected.starts_with("~ ") ? ::fnmatch(expected.c_str() + 2, line.c_str(), 0) == 0
                                      : expected == line;
}

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
        ASSERT_TRUE(std::ranges::equal(step.expected, lines, matches)) << fmt::format(
            "$ {}\n{}\n--- expected:\n{}", step.line, fmt::join(lines, "\n"), fmt::join(step.expected, "\n"));
    }
}

std::vector<Transcript> allTranscripts() {
    std::vector<Transcript> all;
    for (const char* name : {"tasks", "conflicts", "output", "usage", "recipes", "files", "lists", "tags",
                             "history", "selection", "problems", "words"}) {
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

class Help : public testing::TestWithParam<std::string> {};

TEST_P(Help, FitsAScreenAndEndsWithThreeExamplesThatWork) {
    const Workplace workplace;
    const ProgramResult help = workplace.run("tvrn " + GetParam() + " --help");
    ASSERT_EQ(help.status, 0) << help.error;
    std::vector<std::string> lines;
    appendLines(help.output, "", lines);
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
                         testing::Values("", "preview", "rename", "edit", "recipe", "history", "undo", "redo",
                                         "actions", "tags", "presets"),
                         [](const auto& test) { return test.param.empty() ? "overview" : test.param; });

} // namespace
} // namespace tavrin::test
