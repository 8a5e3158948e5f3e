#include "platform/desktop/MenuEntries.h"

#include "platform/desktop/Quoting.h"

#include <fmt/format.h>

namespace tavrin {

namespace {

constexpr std::string_view plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789/._+-";

/// Without quotes where the user's own list can be read more easily so.
std::string programWord(const std::string& program) {
    return program.find_first_not_of(plain) == std::string::npos ? program : quotedForShell(program);
}

} // namespace

std::string MenuEntries::dolphin(const std::string& program) {
    return fmt::format("# {}\n"
                       "[Desktop Entry]\nType=Service\nServiceTypes=KonqPopupMenu/Plugin\nMimeType=all/all;\n"
                       "Actions=renameWithTavrin;\n\n"
                       "[Desktop Action renameWithTavrin]\nName=Rename with Tavrin…\n"
                       "Icon=net.calderwick.tavrin\nExec={} %F\n",
                       mark, desktopEntry::escaped(desktopEntry::quotedArgument(program)));
}

std::string MenuEntries::nemo(const std::string& program) {
    return fmt::format("# {}\n"
                       "[Nemo Action]\nActive=true\nName=Rename with Tavrin…\n"
                       "Comment=Rename the selected files and folders at once\nExec={} %F\n"
                       "Icon-Name=net.calderwick.tavrin\nSelection=notnone\nExtensions=any;\nQuote=double\n",
                       mark, desktopEntry::escaped(programWord(program)));
}

std::string MenuEntries::nautilus(const std::string& program) {
    // The arguments are relative to the folder shown, which in search results is not where an item lies, and
    // the lines of the variable fall apart at a line feed in a name; so each is held against the other. Only
    // names with a line feed that lie in another folder than the one shown are lost: no such file is found.
    return fmt::format(R"(#!/bin/sh
# {}
program={}
selection=$NAUTILUS_SCRIPT_SELECTED_FILE_PATHS
elsewhere=
newline='
'
here=${{PWD%/}}
for name; do
    case $newline$selection$newline in
    *"$newline$here/$name$newline"*) ;;
    *) elsewhere=yes ;;
    esac
done
if [ -n "$elsewhere" ] && [ -n "$selection" ]; then
    IFS=$newline
    set -f
    set -- $selection
fi
exec "$program" -- "$@"
)",
                       mark, programWord(program));
}

std::string MenuEntries::thunarCommand(const std::string& program) {
    std::string command = programWord(program);
    for (std::size_t at = command.find('%'); at != std::string::npos; at = command.find('%', at + 2))
        command.insert(at, 1, '%');
    return command + " %F";
}

} // namespace tavrin
