#include "installation/Tools.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <gtest/gtest.h>

#include <fstream>
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

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

std::string quoted(const std::string& text) {
    std::string result = "'";
    for (const char c : text)
        result += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return result + '\'';
}

bool isThere(const std::string& program) {
    return run({"sh", "-c", "command -v " + quoted(program)}).exitStatus == 0;
}

std::string programFolder() {
    const std::string program = TVRN_PROGRAM;
    return program.substr(0, program.rfind('/'));
}

std::string sourcePath(const std::string& name) { return std::string(TAVRIN_SOURCE_FOLDER "/") + name; }

std::string sourceFile(const std::string& name) {
    std::ifstream file(sourcePath(name), std::ios::binary);
    EXPECT_TRUE(file) << name;
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

} // namespace tavrin::test
