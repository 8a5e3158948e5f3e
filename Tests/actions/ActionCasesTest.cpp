#include "actions/CaseTable.h"
#include "actions/CatalogueFixture.h"
#include "common/FileTimes.h"
#include "common/TemporaryFolder.h"
#include "support/text/Text.h"

#include <filesystem>
#include <set>

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
    for (const auto& each : cases) {
        SCOPED_TRACE(each.place + ": " + each.action);
        ASSERT_TRUE(catalogue.hasAction(each.action));
        auto action = catalogue.newActionForName(each.action);
        for (const auto& [key, value] : each.parameters)
            ASSERT_TRUE(action->parameterList().contains(key)) << key;
        auto parameters = each.parameters;
        if (each.list)
            parameters.insert_or_assign("listFilePath", text::fromBytes(folder.write("list", *each.list)));
        action->setParameterList(parameters);
        const auto path = !each.sample.empty()    ? copyOfSample(each.sample, folder)
                          : each.modified.empty() ? each.path
                                                  : file;
        if (!each.modified.empty())
            setModificationTime(file, each.modified);
        EXPECT_EQ(shown(run(*action, each.name, each.rank, path)), shown(each.expected));
        // Used again, as in a run: nothing of the first name may show in the next.
        run(*action, u"Some Oth\u00e9r-name e\u0301 aBc.ext");
        EXPECT_EQ(shown(run(*action, each.name, each.rank, path)), shown(each.expected)) << "second use";
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
