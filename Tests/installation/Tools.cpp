#include "installation/Tools.h"

#include "support/text/PathParts.h"

#include <sstream>

namespace tavrin::test {

ChildProcess::Result run(const std::vector<std::string>& arguments) {
    ChildProcess::Request request;
    request.arguments = {"/bin/sh", "-c", "exec 2>&1 \"$@\"", "sh"};
    request.arguments.insert(request.arguments.end(), arguments.begin(), arguments.end());
    return ChildProcess::run(request);
}

std::string outputOf(const std::vector<std::string>& arguments) {
    const ChildProcess::Result result = run(arguments);
    EXPECT_EQ(result.exitStatus, 0) << fmt::format("{}", fmt::join(arguments, " ")) << '\n' << result.output;
    return result.output;
}

std::vector<std::string> linesOf(const std::string& text, char end) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line, end);)
        lines.push_back(line);
    return lines;
}

bool isThere(const std::string& program) {
    return run({"sh", "-c", "command -v " + quotedForShell(program)}).exitStatus == 0;
}

std::string programFolder() { return std::string(PathParts(TVRN_PROGRAM).folder); }

std::string sourcePath(const std::string& name) { return std::string(TAVRIN_SOURCE_FOLDER "/") + name; }

std::string sourceFile(const std::string& name) { return outputOf({"cat", sourcePath(name)}); }

} // namespace tavrin::test
