#pragma once

#include <iosfwd>
#include <string>
#include <vector>

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

/// How the test framework names one.
void PrintTo(const Transcript& transcript, std::ostream* stream);

/// Reads transcripts: "== title" begins one, "$ " a step; what follows is expected. A line that begins with
/// "~ " is a pattern of the shell's kind for the rest of the line. Empty lines and "# " lines are passed
/// over.
std::vector<Transcript> readTranscripts(const std::string& path);

/// Whether the lines are as expected.
bool matches(const std::vector<std::string>& expected, const std::vector<std::string>& lines);

} // namespace tavrin::test
