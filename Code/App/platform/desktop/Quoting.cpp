#include "platform/desktop/Quoting.h"

namespace tavrin {

std::string quotedForShell(std::string_view word) {
    std::string result = "'";
    for (const char c : word)
        result += c == '\'' ? "'\\''" : std::string(1, c);
    return result + '\'';
}

std::string desktopEntry::escaped(std::string_view value) {
    std::string result;
    for (const char c : value) {
        switch (c) {
        case '\\':
            result += "\\\\";
            break;
        case '\n':
            result += "\\n";
            break;
        case '\t':
            result += "\\t";
            break;
        case '\r':
            result += "\\r";
            break;
        case ' ':
            // At the start it would be lost.
            result += result.empty() ? "\\s" : " ";
            break;
        default:
            result += c;
        }
    }
    return result;
}

std::string desktopEntry::unescaped(std::string_view value) {
    std::string result;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] != '\\' || i + 1 == value.size()) {
            result += value[i];
            continue;
        }
        const char c = value[++i];
        result += c == 'n' ? '\n' : c == 't' ? '\t' : c == 'r' ? '\r' : c == 's' ? ' ' : c;
    }
    return result;
}

std::string desktopEntry::quotedArgument(std::string_view argument) {
    std::string result = "\"";
    for (const char c : argument) {
        if (c == '"' || c == '`' || c == '$' || c == '\\')
            result += '\\';
        result += c;
        if (c == '%')
            result += '%';
    }
    return result + '"';
}

} // namespace tavrin
