#include "platform/desktop/MenuEntries.h"

#include "platform/desktop/DesktopEntryText.h"

#include <fmt/format.h>

namespace tavrin {

namespace {

constexpr std::string_view plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789/._+-";

std::string quotedForShell(std::string_view program) {
    if (program.find_first_not_of(plain) == std::string_view::npos)
        return std::string(program);
    std::string result = "'";
    for (const char c : program)
        result += c == '\'' ? std::string(R"('\'')") : std::string(1, c);
    return result + '\'';
}

} // namespace

std::string MenuEntries::dolphin(const std::string& program) {
    return fmt::format("# {}\n"
                       "[Desktop Entry]\nType=Service\nServiceTypes=KonqPopupMenu/Plugin\nMimeType=all/all;\n"
                       "Actions=renameWithTavrin;\n\n"
                       "[Desktop Action renameWithTavrin]\nName=Rename with Tavrin…\n"
                       "Icon=net.calderwick.tavrin\nExec={} %F\n",
                       mark, DesktopEntryText::escaped(DesktopEntryText::quotedArgument(program)));
}

std::string MenuEntries::nemo(const std::string& program) {
    return fmt::format("# {}\n"
                       "[Nemo Action]\nActive=true\nName=Rename with Tavrin…\n"
                       "Comment=Rename the selected files and folders at once\nExec={} %F\n"
                       "Icon-Name=net.calderwick.tavrin\nSelection=notnone\nExtensions=any;\nQuote=double\n",
                       mark, DesktopEntryText::escaped(quotedForShell(program)));
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
                       mark, quotedForShell(program));
}

std::string MenuEntries::thunarCommand(const std::string& program) {
    std::string command = quotedForShell(program);
    for (std::size_t at = command.find('%'); at != std::string::npos; at = command.find('%', at + 2))
        command.insert(at, 1, '%');
    return command + " %F";
}

} // namespace tavrin
