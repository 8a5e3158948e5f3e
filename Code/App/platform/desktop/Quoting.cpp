#include "platform/desktop/Quoting.h"

#include "support/text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace tavrin {

namespace {

bool isSeparator(char c) { return std::string_view(" \t\r\n;|&<>()").find(c) != std::string_view::npos; }

/// Cuts a line of a shell into words and commands.
class ShellWords {
  public:
    explicit ShellWords(std::string_view text) : rest(text) {}

    /// False where a quote has no end.
    bool read() {
        while (!rest.empty()) {
            const char c = take();
            if (c == '\'' || c == '"') {
                isWord = true;
                if (!(c == '"' ? readDoubleQuoted() : readSingleQuoted()))
                    return false;
            } else if (c == '#' && !isWord) {
                rest.remove_prefix(std::min(rest.find('\n'), rest.size()));
            } else if (c == '\\') {
                readEscaped();
            } else if (isSeparator(c)) {
                endWord();
                if (c != ' ' && c != '\t' && c != '\r')
                    commands.emplace_back();
            } else {
                isWord = true;
                word += c;
            }
        }
        endWord();
        return true;
    }

    std::vector<std::vector<std::string>> commands{{}};

  private:
    char take() {
        const char c = rest.front();
        rest.remove_prefix(1);
        return c;
    }
    void endWord() {
        if (std::exchange(isWord, false))
            commands.back().push_back(std::exchange(word, {}));
    }
    /// A line break behind the backslash joins two lines.
    void readEscaped() {
        const char c = rest.empty() ? '\\' : take();
        if (c == '\n')
            return;
        isWord = true;
        word += c;
    }
    bool readSingleQuoted() {
        const std::size_t end = rest.find('\'');
        if (end == rest.npos)
            return false;
        word += rest.substr(0, end);
        rest.remove_prefix(end + 1);
        return true;
    }
    bool readDoubleQuoted() {
        while (!rest.empty()) {
            const char c = take();
            if (c == '"')
                return true;
            if (c != '\\' || rest.empty() ||
                std::string_view("$`\"\\\n").find(rest.front()) == std::string_view::npos)
                word += c;
            else if (const char escaped = take(); escaped != '\n')
                word += escaped;
        }
        return false;
    }

    std::string_view rest;
    std::string word;
    bool isWord = false; ///< a word has begun, be it empty
};

} // namespace

std::string quotedForShell(std::string_view word) {
    std::string result = "'";
    for (const char c : word)
        result += c == '\'' ? "'\\''" : std::string(1, c);
    return result + '\'';
}

std::string quotedForShellAsText(std::string_view word) {
    std::string result;
    std::u16string plain;
    std::string octal;
    const auto flush = [&] {
        if (!plain.empty())
            result += quotedForShell(text::toUtf8(std::exchange(plain, {})));
        if (!octal.empty())
            result += fmt::format("\"$(printf '{}')\"", std::exchange(octal, {}));
    };
    for (const char16_t unit : text::fromBytes(word)) {
        const bool isByte = unit >= 0xDC80 && unit <= 0xDCFF;
        // A line break would be lost at the end of what a command prints.
        const bool isControl = (unit < 0x20 && unit != '\n') || unit == 0x7F;
        if ((isByte || isControl) == octal.empty())
            flush();
        if (isByte || isControl)
            octal += fmt::format("\\{:03o}", unit & 0xFF);
        else
            plain += unit;
    }
    flush();
    return result.empty() ? quotedForShell(word) : result;
}

std::optional<std::vector<std::vector<std::string>>> shellCommands(std::string_view lines) {
    ShellWords words(lines);
    if (!words.read())
        return std::nullopt;
    return std::move(words.commands);
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
