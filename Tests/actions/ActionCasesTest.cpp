#include "actions/CatalogueFixture.h"
#include "common/FileTimes.h"
#include "common/TemporaryFolder.h"
#include "support/text/Text.h"

#include <charconv>
#include <filesystem>
#include <fstream>
#include <set>
#include <stdexcept>

namespace tavrin::test {

namespace {

using ActionCases = CatalogueFixture;

/// UTF-8 with everything but printable ASCII as escapes, so that a failure shows what differs.
std::string shown(std::u16string_view text) {
    std::string result;
    for (const char16_t unit : text) {
        if (unit >= 0x20 && unit < 0x7F) {
            result += static_cast<char>(unit);
        } else {
            char escape[16];
            std::snprintf(escape, sizeof escape, "\\u{%x}", static_cast<unsigned>(unit));
            result += escape;
        }
    }
    return result;
}

/// One line of a case table.
struct ActionCase {
    std::string place; ///< file and line, for messages
    std::string action;
    PropertyDictionary parameters;
    PropertyDictionary circumstances; ///< the keys that begin with "@"
    std::u16string name;
    std::u16string expected;

    [[nodiscard]] std::string told(std::string_view key) const {
        const auto* value = find(circumstances, key);
        return value ? text::toUtf8(textValue(*value)) : "";
    }
};

/// Reads a line of a table; README there tells the format. Throws std::runtime_error for anything else.
class LineReader {
  public:
    explicit LineReader(std::string_view text) : rest(text) {}

    ActionCase read() {
        ActionCase each;
        each.action = upTo('|');
        for (bool isFirst = true; !take('|'); isFirst = false) {
            if (!isFirst)
                expect(',');
            const auto key = upTo('=');
            auto value = take('"') ? PropertyValue(textUpToQuote()) : PropertyValue(number(10));
            auto& list = key.starts_with('@') ? each.circumstances : each.parameters;
            if (!list.emplace(key, std::move(value)).second)
                fail("key told twice");
        }
        expect('"');
        each.name = textUpToQuote();
        expect('|');
        expect('"');
        each.expected = textUpToQuote();
        skipBlanks();
        if (!rest.empty())
            fail("more than four columns");
        return each;
    }

  private:
    [[noreturn]] void fail(std::string_view what) const {
        throw std::runtime_error(std::string(what).append(" at: ").append(rest));
    }

    void skipBlanks() { rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size())); }

    bool take(char c) {
        skipBlanks();
        const bool isThere = rest.starts_with(c);
        rest.remove_prefix(isThere ? 1 : 0);
        return isThere;
    }
    void expect(char c) {
        if (!take(c))
            fail(std::string("expected ") + c);
    }

    std::string upTo(char c) {
        skipBlanks();
        const auto end = std::min(rest.find(c), rest.size());
        std::string word(rest.substr(0, end));
        rest.remove_prefix(end);
        expect(c);
        return word.substr(0, word.find_last_not_of(' ') + 1);
    }

    std::int32_t number(int base) {
        std::int32_t value = 0;
        const auto read = std::from_chars(rest.data(), rest.data() + rest.size(), value, base);
        if (read.ec != std::errc())
            fail("expected a number");
        rest.remove_prefix(static_cast<std::size_t>(read.ptr - rest.data()));
        return value;
    }

    std::u16string textUpToQuote() {
        std::u16string text;
        while (!rest.starts_with('"')) {
            const auto plain = std::min(rest.find_first_of("\"\\"), rest.size());
            text += text::fromUtf8(rest.substr(0, plain));
            rest.remove_prefix(plain);
            if (rest.empty())
                fail("text without end");
            if (rest.front() == '\\')
                readEscape(text);
        }
        rest.remove_prefix(1);
        return text;
    }

    void readEscape(std::u16string& text) {
        const char kind = rest.size() > 1 ? rest[1] : ' ';
        rest.remove_prefix(std::min<std::size_t>(2, rest.size()));
        if (kind == 'u') {
            expect('{');
            const auto point = static_cast<char32_t>(number(16));
            expect('}');
            if (point >= 0x10000)
                text += {static_cast<char16_t>(0xD7C0 + (point >> 10)),
                         static_cast<char16_t>(0xDC00 + (point & 0x3FF))};
            else
                text += static_cast<char16_t>(point);
        } else if (kind == 'n' || kind == 'r') {
            text += kind == 'n' ? u'\n' : u'\r';
        } else if (kind == '"' || kind == '\\') {
            text += static_cast<char16_t>(kind);
        } else {
            fail("unknown escape");
        }
    }

    std::string_view rest;
};

/// All tables of a folder.
std::vector<ActionCase> readCases(const std::string& folder) {
    std::vector<ActionCase> cases;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::ifstream file(entry.path());
        std::string text;
        for (int line = 1; entry.path().extension() == ".txt" && std::getline(file, text); ++line) {
            if (text.empty() || text.front() == '#')
                continue;
            const auto place = entry.path().filename().string() + ":" + std::to_string(line);
            SCOPED_TRACE(place);
            cases.push_back(LineReader(text).read());
            cases.back().place = place;
        }
    }
    return cases;
}

std::string copyOfSample(const std::string& sample, const TemporaryFolder& folder) {
    std::filesystem::copy_file(TAVRIN_SOURCE_FOLDER "/Tests/samples/" + sample, folder.path(sample),
                               std::filesystem::copy_options::skip_existing);
    return folder.path(sample);
}

TEST_F(ActionCases, GiveTheNamesOfTheTable) {
    const auto cases = readCases(TAVRIN_TEST_DATA "/cases");
    const TemporaryFolder folder;
    const auto file = folder.write("file");
    std::set<std::string> seen;
    ASSERT_FALSE(cases.empty());
    for (const auto& each : cases) {
        SCOPED_TRACE(each.place + ": " + each.action);
        ASSERT_TRUE(catalogue.hasAction(each.action));
        auto action = catalogue.newActionForName(each.action);
        for (const auto& [key, value] : each.parameters)
            ASSERT_TRUE(action->parameterList().contains(key)) << key;
        auto parameters = each.parameters;
        if (each.circumstances.contains("@list"))
            parameters.insert_or_assign("listFilePath",
                                        text::fromBytes(folder.write("list", each.told("@list"))));
        action->setParameterList(parameters);
        const auto sample = each.told("@sample");
        const auto modified = each.told("@modified");
        const auto path = !sample.empty()    ? copyOfSample(sample, folder)
                          : modified.empty() ? each.told("@path")
                                             : file;
        if (!modified.empty())
            setModificationTime(file, modified);
        const auto rank = each.circumstances.contains("@rank") ? intValue(each.circumstances.at("@rank")) : 1;
        EXPECT_EQ(shown(run(*action, each.name, rank, path)), shown(each.expected));
        // Used again, as in a run: nothing of the first name may show in the next.
        run(*action, u"Some Oth\u00e9r-name e\u0301 aBc.ext");
        EXPECT_EQ(shown(run(*action, each.name, rank, path)), shown(each.expected)) << "second use";
        if (each.name != each.expected)
            seen.insert(each.action);
    }
    for (const auto& entry : allActions())
        EXPECT_TRUE(seen.contains(std::string(entry.name)))
            << entry.name << " has no case that changes a name";
}

// Laws of whole families, over names that an author of cases would not think of.
TEST_F(ActionCases, KeepTheLawsOfTheirFamilies) {
    const std::u16string names[] = {u"abcabc.txt",
                                    u"",
                                    u"b",
                                    u".b",
                                    u"\u00e9b\u0301B",
                                    u"b\r\nb",
                                    u"\xDC80"
                                    u"b\xD83D\xDE00",
                                    std::u16string(3000, u'b')};
    for (const auto& name : names) {
        for (const auto* mover : {"Move text to front", "Move text to end",
                                  "Move text in front of existing text", "Move text after existing text"}) {
            auto action = catalogue.newActionForName(mover);
            action->setParameterList({{"text", u"b"}, {"searchTerm", u"a"}, {"fragmentSelection", 0}});
            const auto moved = run(*action, name);
            EXPECT_TRUE(std::is_permutation(moved.begin(), moved.end(), name.begin(), name.end()))
                << mover << ": " << shown(name) << " -> " << shown(moved);
        }
        // What nobody asked to change stays, for every action that has something to look for.
        for (const auto* seeker : {"Replace text", "Remove text", "Replace characters", "Replace at front",
                                   "Replace at end", "Insert in front of text", "Insert at end of text"}) {
            auto action = catalogue.newActionForName(seeker);
            action->setParameterList({{"replacementTerm", u"X"}, {"with", u"X"}, {"text", u"X"}});
            EXPECT_TRUE(text::canonicallyEqual(run(*action, name), name)) << seeker << ": " << shown(name);
        }
    }
}

} // namespace

} // namespace tavrin::test
