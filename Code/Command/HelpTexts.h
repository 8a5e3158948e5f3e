#pragma once

#include <string>

/// The help of the program and its subcommands. Each fits a screen of 80 by 24.
namespace tavrin::help {

extern const std::string overview;
extern const std::string preview;
extern const std::string rename;
extern const std::string recipe;
extern const std::string actions;
extern const std::string tags;
extern const std::string presets;
extern const std::string edit;
extern const std::string history;
extern const std::string undo;
extern const std::string redo;

} // namespace tavrin::help
