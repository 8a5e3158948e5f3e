#include "command/Transcript.h"

#include <algorithm>
#include <fnmatch.h>
#include <fstream>
#include <ostream>
#include <stdexcept>

namespace tavrin::test {

void PrintTo(const Transcript& transcript, std::ostream* stream) {
    *stream << transcript.file << ": " << transcript.title;
}

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

bool matches(const std::vector<std::string>& expected, const std::vector<std::string>& lines) {
    return std::ranges::equal(expected, lines, [](const std::string& wanted, const std::string& line) {
        if (wanted.starts_with("~ "))
            return ::fnmatch(wanted.c_str() + 2, line.c_str(), 0) == 0;
        return wanted == line;
    });
}

} // namespace tavrin::test
