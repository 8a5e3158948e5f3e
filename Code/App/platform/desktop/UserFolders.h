#pragma once

#include <string>

namespace tavrin {

/// The user's base folders, without a slash at the end, as bytes. The environment is asked at each call;
/// relative paths in it are ignored.
struct UserFolders {
    /// $HOME, else the home folder of the account.
    static std::string home();
    /// $XDG_CONFIG_HOME, else ~/.config.
    static std::string configuration();
    /// $XDG_DATA_HOME, else ~/.local/share.
    static std::string data();
    /// $XDG_STATE_HOME, else ~/.local/state.
    static std::string state();
};

} // namespace tavrin
