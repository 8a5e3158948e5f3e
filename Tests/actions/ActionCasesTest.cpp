#include "actions/ActionLaws.h"
#include "support/text/Text.h"

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <stdexcept>

namespace tavrin::test {

namespace {

using ActionCases = CatalogueFixture;

std::u16string unescaped(const std::string& utf8) {
    const auto text = text::fromUtf8(utf8);
    std::u16string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char16_t kind = text[at] == u'\\' ? text[++at] : u' ';
        if (kind == u'u') {
            const auto point = std::stoul(text::toUtf8(text.substr(at + 2, 6)), nullptr, 16);
            if (point >= 0x10000)
                result += static_cast<char16_t>(0xD7C0 + (point >> 10));
            result += static_cast<char16_t>(point < 0x10000 ? point : 0xDC00 + (point & 0x3FF));
            at = text.find(u'}', at);
        } else {
            result += kind == u'n' ? u'\n' : kind == u'r' ? u'\r' : text[at];
        }
    }
    return result;
}

/// The action and the case of a line of a table; README there tells the format. Throws std::runtime_error for
/// anything else.
std::pair<std::string, ActionCase> caseOf(const std::string& line) {
    static const std::string text = R"~("((?:[^"\\]|\\(?:["\\nr]|u\{[[:xdigit:]]{1,5}\}))*)")~";
    static const std::regex columns(R"(([^|]+) \| (.*?) ?\| )" + text + R"( \| )" + text);
    static const std::regex parameter("([@\\w]+) = (?:(-?\\d+)|" + text + ")(?:, |$)");
    std::smatch found;
    if (!std::regex_match(line, found, columns))
        throw std::runtime_error("no case: " + line);
    const std::string action = found[1];
    ActionCase each{{}, {}, unescaped(found[3]), unescaped(found[4])};
    for (std::string rest = found[2]; !rest.empty(); rest = found.suffix()) {
        if (!std::regex_search(rest, found, parameter, std::regex_constants::match_continuous))
            throw std::runtime_error("no parameter: " + rest);
        const auto value =
            found[2].matched ? PropertyValue(std::stoi(found[2])) : PropertyValue(unescaped(found[3]));
        auto& list = rest.starts_with('@') ? each.circumstances : each.parameters;
        if (!list.emplace(found[1], value).second)
            throw std::runtime_error("key told twice: " + line);
    }
    return {action, each};
}

// Each action serves for all its cases: nothing of other names and parameters may show in the next.
TEST_F(ActionCases, GiveTheNamesOfTheTable) {
    const TemporaryFolder folder;
    std::map<std::string, std::unique_ptr<BaseRenameAction>> actions;
    for (const auto& entry : std::filesystem::directory_iterator(TAVRIN_TEST_DATA "/cases")) {
        std::ifstream table(entry.path());
        std::string line;
        while (entry.path().extension() == ".txt" && std::getline(table, line)) {
            if (line.empty() || line.starts_with('#'))
                continue;
            SCOPED_TRACE(entry.path().filename().string() + ": " + line);
            const auto [name, each] = caseOf(line);
            auto& action = actions[name];
            if (!action)
                action = make(name);
            expectCase(*action, each, folder);
        }
    }
}

// Laws of whole families, over names that an author of cases would not think of.
TEST_F(ActionCases, KeepTheLawsOfTheirFamilies) {
    std::vector<std::u16string> names{u"abcabc.txt",           u"", u"b", u".b", u"\u00e9b\u0301B", u"b\r\nb",
                                      u"b\xDC80-b\xD83D\xDE00"};
    names.emplace_back(3000, u'b');
    for (const auto& name : names) {
        for (const auto* mover : {"Move text to front", "Move text to end",
                                  "Move text in front of existing text", "Move text after existing text"}) {
            const auto action = make(mover, {{"text", u"b"}, {"searchTerm", u"a"}, {"fragmentSelection", 0}});
            const auto moved = run(*action, name);
            EXPECT_TRUE(std::is_permutation(moved.begin(), moved.end(), name.begin(), name.end()))
                << mover << ": " << text::toUtf8(name) << " -> " << text::toUtf8(moved);
        }
        // What nobody asked to change stays, for every action that has something to look for.
        for (const auto* seeker : {"Replace text", "Remove text", "Replace characters", "Replace at front",
                                   "Replace at end", "Insert in front of text", "Insert at end of text"}) {
            const auto action = make(seeker, {{"replacementTerm", u"X"}, {"with", u"X"}, {"text", u"X"}});
            EXPECT_TRUE(text::canonicallyEqual(run(*action, name), name))
                << seeker << ": " << text::toUtf8(name);
        }
    }
}

} // namespace

} // namespace tavrin::test
