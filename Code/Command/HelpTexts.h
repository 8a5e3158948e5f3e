#pragma once

/// The help of the program and its subcommands. Each fits a screen of 80 by 24.
namespace tavrin::help {

extern const char* const overview;
extern const char* const preview;
extern const char* const rename;
extern const char* const actions;
extern const char* const tags;
extern const char* const presets;
extern const char* const history;
extern const char* const undo;
extern const char* const redo;

} // namespace tavrin::help
