#pragma once

#include "common/Testing.h"
#include "platform/desktop/Quoting.h"
#include "platform/processes/ChildProcess.h"

namespace tavrin::test {

/// Runs a program of PATH; its standard error is part of the output.
ChildProcess::Result run(const std::vector<std::string>& arguments);
/// The output alone; fails the test where the program fails.
std::string outputOf(const std::vector<std::string>& arguments);
/// The lines of a text, or its parts between another character.
std::vector<std::string> linesOf(const std::string& text, char end = '\n');
bool isThere(const std::string& program);

/// Where tvrn was built.
std::string programFolder();
std::string sourcePath(const std::string& name);
std::string sourceFile(const std::string& name);

} // namespace tavrin::test
