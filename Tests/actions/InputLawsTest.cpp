// What holds for any name and any parameters: no author of cases thinks of all of them.

#include "actions/CatalogueFixture.h"

namespace tavrin::test {

namespace {

/// Names out of what is odd somewhere, the same in every run.
const std::vector<std::u16string>& oddNames() {
    static const auto names = [] {
        const std::u16string_view pieces[] = {
            u" ",      u".",      u":",      u"?",      u"_",   u"a",    u"E",
            u"1",      u"09",     u"%",      u"\r",     u"\n",  u"\x01", u"\u0301",
            u"\u00e9", u"\u0600", u"\xD83D", u"\xDE00", u"NUL", u"con",  u"longer text"};
        std::mt19937 random(11);
        std::vector<std::u16string> result(3000);
        for (auto& name : result)
            for (auto count = random() % 12; count > 0; --count)
                name += pieces[random() % std::size(pieces)];
        return result;
    }();
    return names;
}

using CharacterLaws = CatalogueFixture;

TEST_F(CharacterLaws, TruncationNeverExceedsItsBound) {
    const auto toDos = make("Truncate to DOS", {{"fragmentSelection", 0}});
    const auto toMac = make("Convert to Mac OS 9");
    const auto truncate = make("Truncate", {{"fragmentSelection", 0}});
    for (const auto& name : oddNames()) {
        const auto dos = run(*toDos, name);
        const auto dot = std::min(dos.rfind(u'.'), dos.size());
        EXPECT_TRUE(dot <= 8 && dos.size() - dot <= 4) << text::toUtf8(name);
        EXPECT_EQ(run(*toMac, name).size(), std::min<std::size_t>(name.size(), 31));
        const auto most = static_cast<std::int32_t>((name.size() * 7 + dos.size()) % 31);
        truncate->setValue(most, "numberOfCharacters");
        truncate->setValue(most % 2, "smart");
        EXPECT_EQ(run(*truncate, name).size(), std::min(name.size(), static_cast<std::size_t>(most)));
    }
}

TEST_F(CharacterLaws, ANameMadeFitStaysAndIsFit) {
    for (const std::u16string filler : {u"_", u"", u" ", u".", u"-", u"?", u"\r\n", u"\u0600.", u"\u0600 ",
                                        u" \u0301", u":\u0301", u"\x01", u"\xD83D", u"L", u"e\u0301"}) {
        const auto action = make("Convert to NTFS", {{"fillerCharacter", filler}});
        for (const auto& name : oddNames()) {
            const auto fit = run(*action, name);
            SCOPED_TRACE(text::toUtf8(filler + u": " + name + u" -> " + fit));
            ASSERT_EQ(run(*action, fit), fit);
            ASSERT_FALSE(fit.empty() || fit.starts_with(u' ') || fit.ends_with(u' ') || fit.ends_with(u'.'));
            ASSERT_EQ(fit.find_first_of(u":?\r\n\x01"), fit.npos);
            ASSERT_FALSE(fit == u"NUL" || fit == u"con");
        }
    }
    const auto action = make("Convert to NTFS", {{"fillerCharacter", u""}});
    EXPECT_EQ(run(*action, std::u16string(300000, u'.') + std::u16string(300000, u' ')), u"_");
    action->setValue(u"?x", "fillerCharacter");
    run(*action, u"a:b");
    EXPECT_EQ(action->getParamString("fillerCharacter"), u"_");
}

TEST_F(CharacterLaws, TakeMoreThan255Blocks) {
    std::u16string name;
    for (int i = 0; i < 1000; ++i)
        name += u"1a";
    EXPECT_EQ(run(*make("Remove numbers", {{"blockMode", 1005}}), name), name.substr(1));
    EXPECT_EQ(run(*make("Remove numbers", {{"blockMode", 1006}}), name), name);
    for (const std::int32_t padding : {2147483647, -2147483647 - 1})
        EXPECT_EQ(run(*make("Change numbers", {{"blockMode", 1005}, {"padding", padding}}), name).size(),
                  name.size() + 1023);
}

TEST_F(CharacterLaws, SetsOfCharactersAreMergedInto) {
    const auto action = make("Keep only specific characters");
    const auto merged = [&](const std::u16string& before, std::int32_t index) {
        action->setValue(before, "string");
        action->selectPattern(index);
        return action->getParamString("string");
    };
    for (std::int32_t i = -1; i <= 6; ++i) {
        const auto set = merged(u"", i);
        EXPECT_EQ(set.empty(), i < 1 || i > 5) << i;
        const auto others = u"\u00e9e\u0301\u00e9" + set; // only the set's own are there once
        EXPECT_EQ(merged(others, i), others) << i;
    }
    EXPECT_EQ(merged(u"a1b1\u00e99", 4), u"ab\u00e90123456789");
    EXPECT_EQ(merged(u"aVz", 1).substr(0, 3), u"V !"); // without the "V", as it has always been
}

using SequenceLaws = CatalogueFixture;

// One step of -1 leads back, from any start, by any number of items.
TEST_F(SequenceLaws, CountInLettersThereAndBack) {
    const auto action = make("Produce alphabetical list");
    std::mt19937_64 random(5);
    for (int i = 0; i < 2000; ++i) {
        std::u16string start(1, static_cast<char16_t>(u'B' + random() % 25));
        for (auto length = random() % 12; length > 0; --length)
            start += static_cast<char16_t>(u'A' + random() % 26);
        const auto rank = 1 + static_cast<std::int32_t>(random() % 100000);
        action->setParameterList({{"startValue", u"aa" + text::lowercased(start)}, {"stepValue", 1}});
        const auto reached = run(*action, u"", rank);
        action->setParameterList({{"startValue", reached}, {"stepValue", -1}});
        EXPECT_EQ(run(*action, u"", rank), start) << text::toUtf8(reached);
    }
}

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
