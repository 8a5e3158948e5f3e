#include "actions/CatalogueFixture.h"

#include <limits>

namespace tavrin::test {

namespace {

using namespace std::string_literals;

/// What a stored list may hold under any key, whatever belongs there.
std::vector<PropertyValue> hostileValues() {
    std::vector<PropertyValue> values{true, std::int64_t{1} << 40, 1e300, PropertyDate{-1e18}};
    values.emplace_back(PropertyArray{1, u"x"});
    values.emplace_back(PropertyDictionary{{"a", 1}});
    values.emplace_back(PropertyData{{0, 255}});
    using Limits = std::numeric_limits<std::int32_t>;
    for (const std::int32_t number : {Limits::min(), -1, 0, 1, 13, 999, Limits::max()})
        values.emplace_back(number);
    for (const std::u16string& text :
         {u""s, u"0"s, u"-7"s, u"99999999999999999999"s, u"<Year"s, u">"s, u"($1"s, u"a{1000000000}"s, u"\\"s,
          u"$9$0\\"s, u"/"s, u"\r\n"s, u"e\u0301"s, std::u16string(100000, u'y'), u"\xD800\xDC80\xDFFF\0"s})
        values.emplace_back(text);
    return values;
}

std::vector<std::u16string> hostileNames() {
    std::vector<std::u16string> names{u"",
                                      u".",
                                      u"..",
                                      u"...",
                                      u"abc 12.jpg",
                                      u"\xD800.\xDC80",
                                      u"CON",
                                      u"\u0301\u0301a",
                                      u"99999999999999999999"};
    names.emplace_back(300, u' ');
    auto& blocks = names.emplace_back();
    for (int i = 0; i < 400; ++i)
        blocks += u"1 ";
    return names;
}

using HostileInput = CatalogueFixture;

// Whatever comes out, it is no monster: memory follows neither paddings nor repeats.
TEST_F(HostileInput, HarmsNoAction) {
    const auto names = hostileNames();
    const auto isBounded = [](const std::u16string& name, BaseRenameAction& action) {
        return run(action, name, 3, "/nowhere/at/all.xml").size() < 1000000;
    };
    for (const auto& value : hostileValues()) {
        for (const auto& entry : allActions()) {
            SCOPED_TRACE(std::string(entry.name) + ": " + description(value).substr(0, 60));
            const auto everywhere = entry.make();
            PropertyDictionary all;
            for (const auto& parameter : everywhere->parameters()) {
                all.insert_or_assign(std::string(parameter.key), value);
                EXPECT_TRUE(isBounded(u"abc 12.jpg",
                                      *make(std::string(entry.name), {{std::string(parameter.key), value}})));
            }
            everywhere->setParameterList(all);
            for (const auto& name : names)
                EXPECT_TRUE(isBounded(name, *everywhere));
        }
    }
}

} // namespace

} // namespace tavrin::test
