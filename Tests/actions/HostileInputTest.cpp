#include "actions/BaseRenameAction.h"
#include "actions/CatalogueFixture.h"
#include "support/text/Text.h"

#include <limits>

namespace tavrin::test {

namespace {

constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();

/// What a stored list may hold under any key, whatever belongs there.
std::vector<PropertyValue> hostileValues() {
    std::vector<PropertyValue> values{least,
                                      -1,
                                      0,
                                      1,
                                      13,
                                      999,
                                      most,
                                      std::int64_t{1} << 40,
                                      1e300,
                                      true,
                                      u"",
                                      u"0",
                                      u"-7",
                                      u"99999999999999999999",
                                      u"<Year",
                                      u">",
                                      u"($1",
                                      u"a{1000000000}",
                                      u"\\",
                                      u"$9$0\\",
                                      u"/",
                                      u"\r\n",
                                      u"e\u0301",
                                      PropertyArray{1, u"x"},
                                      PropertyDictionary{{"a", 1}},
                                      PropertyData{{0, 255}},
                                      PropertyDate{-1e18}};
    values.emplace_back(std::u16string(100000, u'y'));
    values.emplace_back(std::u16string{0xD800, 0xDC80, 0xDFFF, 0});
    return values;
}

std::vector<std::u16string> hostileNames() {
    std::u16string blocks;
    for (int i = 0; i < 400; ++i)
        blocks += u"1 ";
    return {u"",
            u".",
            u"..",
            u"...",
            u"abc 12.jpg",
            std::u16string(300, u' '),
            blocks,
            std::u16string{0xD800, u'.', 0xDC80},
            u"CON",
            u"\u0301\u0301a",
            u"99999999999999999999"};
}

class HostileInput : public CatalogueFixture {
  protected:
    /// Whatever comes out, it is no monster: memory follows neither paddings nor repeats.
    static void runOnAllNames(BaseRenameAction& action) {
        static const auto names = hostileNames();
        for (const auto& name : names)
            EXPECT_LT(run(action, name, 3, "/nowhere/at/all.xml").size(), 2000000U);
    }
};

TEST_F(HostileInput, HarmsNoAction) {
    const auto values = hostileValues();
    for (const auto& entry : allActions()) {
        SCOPED_TRACE(entry.name);
        for (const auto& value : values) {
            SCOPED_TRACE(description(value).substr(0, 60));
            auto everywhere = entry.make();
            PropertyDictionary all;
            for (const auto& parameter : everywhere->parameters()) {
                all.insert_or_assign(std::string(parameter.key), value);
                auto one = entry.make();
                one->setParameterList({{std::string(parameter.key), value}});
                EXPECT_FALSE(run(*one, u"abc 12.jpg", 1, "/nowhere/at/all.xml").size() > 1000000U);
            }
            everywhere->setParameterList(all);
            runOnAllNames(*everywhere);
        }
    }
}

} // namespace

} // namespace tavrin::test
