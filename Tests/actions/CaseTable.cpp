#include "actions/CaseTable.h"

#include "support/text/Text.h"

#include <charconv>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace tavrin::test {

namespace {

class LineReader {
  public:
    LineReader(std::string_view text, int number) : rest(text), line(number) {}

    ActionCase read() {
        ActionCase each;
        const auto bar = rest.find('|');
        if (bar == rest.npos)
            fail("expected |");
        each.action = trimmed(rest.substr(0, bar));
        rest.remove_prefix(bar + 1);
        for (bool isFirst = true; !take('|'); isFirst = false) {
            if (!isFirst && !take(','))
                fail("expected , or |");
            readParameter(each);
        }
        each.name = readText();
        if (!take('|'))
            fail("expected |");
        each.expected = readText();
        skipBlanks();
        if (!rest.empty())
            fail("more than four columns");
        return each;
    }

  private:
    [[noreturn]] void fail(const char* what) const {
        throw std::runtime_error("line " + std::to_string(line) + ": " + what + " at: " + std::string(rest));
    }

    static std::string trimmed(std::string_view text) {
        const auto first = text.find_first_not_of(' ');
        const auto last = text.find_last_not_of(' ');
        return first == text.npos ? "" : std::string(text.substr(first, last - first + 1));
    }

    void skipBlanks() { rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size())); }

    bool take(char c) {
        skipBlanks();
        if (!rest.starts_with(c))
            return false;
        rest.remove_prefix(1);
        return true;
    }

    void readParameter(ActionCase& into) {
        const auto equals = rest.find('=');
        if (equals == rest.npos)
            fail("expected KEY = VALUE");
        const auto key = trimmed(rest.substr(0, equals));
        rest.remove_prefix(equals + 1);
        skipBlanks();
        if (rest.starts_with('"')) {
            if (key == "@path")
                into.path = text::toUtf8(readText());
            else if (key == "@modified")
                into.modified = text::toUtf8(readText());
            else if (key == "@sample")
                into.sample = text::toUtf8(readText());
            else if (key == "@list")
                into.list = text::toUtf8(readText());
            else if (!into.parameters.emplace(key, readText()).second)
                fail("key told twice");
        } else if (const auto number = readNumber(10); key == "@rank") {
            into.rank = number;
        } else if (!into.parameters.emplace(key, number).second) {
            fail("key told twice");
        }
    }

    std::int32_t readNumber(int base) {
        std::int32_t number = 0;
        const auto read = std::from_chars(rest.data(), rest.data() + rest.size(), number, base);
        if (read.ec != std::errc())
            fail("expected a number");
        rest.remove_prefix(static_cast<std::size_t>(read.ptr - rest.data()));
        return number;
    }

    std::u16string readText() {
        if (!take('"'))
            fail("expected a text");
        std::u16string text;
        std::string plain;
        while (!rest.starts_with('"')) {
            if (rest.empty())
                fail("text without end");
            const char c = rest.front();
            rest.remove_prefix(1);
            if (c == '\\') {
                text += text::fromUtf8(std::exchange(plain, {}));
                readEscape(text);
            } else {
                plain += c;
            }
        }
        rest.remove_prefix(1);
        return text + text::fromUtf8(plain);
    }

    void readEscape(std::u16string& text) {
        const char kind = rest.empty() ? ' ' : rest.front();
        rest.remove_prefix(rest.empty() ? 0 : 1);
        if (kind == '"' || kind == '\\') {
            text += static_cast<char16_t>(kind);
        } else if (kind == 'n' || kind == 'r') {
            text += kind == 'n' ? u'\n' : u'\r';
        } else if (kind == 'u' && take('{')) {
            const auto point = static_cast<char32_t>(readNumber(16));
            if (!take('}'))
                fail("expected }");
            if (point >= 0x10000) {
                text += static_cast<char16_t>(0xD7C0 + (point >> 10));
                text += static_cast<char16_t>(0xDC00 + (point & 0x3FF));
            } else {
                text += static_cast<char16_t>(point);
            }
        } else {
            fail("unknown escape");
        }
    }

    std::string_view rest;
    int line;
};

} // namespace

std::vector<ActionCase> readCases(const std::string& folder) {
    std::vector<ActionCase> cases;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() != ".txt")
            continue;
        std::ifstream file(entry.path());
        std::string text;
        for (int line = 1; std::getline(file, text); ++line) {
            if (text.empty() || text.front() == '#')
                continue;
            cases.push_back(LineReader(text, line).read());
            cases.back().place = entry.path().filename().string() + ":" + std::to_string(line);
        }
    }
    if (cases.empty())
        throw std::runtime_error("no cases in " + folder);
    return cases;
}

} // namespace tavrin::test
