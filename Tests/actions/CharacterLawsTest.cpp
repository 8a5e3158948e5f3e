#include "actions/CatalogueFixture.h"
#include "support/text/Text.h"

#include <random>

namespace tavrin::test {

namespace {

/// Names out of what is odd somewhere, the same in every run.
class Names {
  public:
    std::u16string next() {
        static const std::u16string_view pieces[] = {
            u" ",      u".",      u":",      u"?",      u"_",   u"a",    u"E",
            u"1",      u"09",     u"%",      u"\r",     u"\n",  u"\x01", u"\u0301",
            u"\u00e9", u"\u0600", u"\xD83D", u"\xDE00", u"NUL", u"con",  u"longer text"};
        std::u16string name;
        for (auto count = random() % 12; count > 0; --count)
            name += pieces[random() % std::size(pieces)];
        return name;
    }

  private:
    std::mt19937 random{11};
};

constexpr int rounds = 3000;

class CharacterLaws : public CatalogueFixture {
  protected:
    std::unique_ptr<BaseRenameAction> make(const char* name, PropertyDictionary parameters) {
        auto action = catalogue.newActionForName(name);
        parameters.emplace("fragmentSelection", 0);
        action->setParameterList(parameters);
        return action;
    }
    Names names;
};

TEST_F(CharacterLaws, TruncationNeverExceedsItsBound) {
    for (const std::int32_t smart : {0, 1}) {
        for (const std::int32_t most : {0, 1, 2, 5, 8, 30}) {
            const auto action = make("Truncate", {{"numberOfCharacters", most}, {"smart", smart}});
            for (int i = 0; i < rounds / 10; ++i) {
                const auto name = names.next();
                EXPECT_EQ(run(*action, name).size(), std::min(name.size(), static_cast<std::size_t>(most)));
            }
        }
    }
    const auto toDos = make("Truncate to DOS", {});
    const auto toMac = make("Convert to Mac OS 9", {});
    for (int i = 0; i < rounds; ++i) {
        const auto name = names.next();
        const auto dos = run(*toDos, name);
        EXPECT_LE(std::min(dos.rfind(u'.'), dos.size()), 8U) << text::toUtf8(name);
        EXPECT_LE(dos.size() - std::min(dos.rfind(u'.'), dos.size()), 4U) << text::toUtf8(name);
        EXPECT_EQ(run(*toMac, name).size(), std::min<std::size_t>(name.size(), 31));
    }
}

TEST_F(CharacterLaws, ANameMadeFitStaysAndIsFit) {
    for (const std::u16string filler : {u"_", u"", u" ", u".", u"-", u"?", u"\r\n", u"\u0600.", u"\u0600 ",
                                        u" \u0301", u":\u0301", u"\x01", u"\xD83D", u"L", u"e\u0301"}) {
        const auto action = make("Convert to NTFS", {{"fillerCharacter", filler}});
        for (int i = 0; i < rounds; ++i) {
            const auto name = names.next();
            const auto fit = run(*action, name);
            const auto what = text::toUtf8(filler) + ": " + text::toUtf8(name) + " -> " + text::toUtf8(fit);
            ASSERT_EQ(run(*action, fit), fit) << what;
            ASSERT_FALSE(fit.empty() || fit.starts_with(u' ') || fit.ends_with(u' ') || fit.ends_with(u'.'))
                << what;
            ASSERT_EQ(fit.find_first_of(u":?\r\n\x01"), fit.npos) << what;
            ASSERT_FALSE(fit == u"NUL" || fit == u"con") << what;
        }
    }
    const auto action = make("Convert to NTFS", {{"fillerCharacter", u""}});
    EXPECT_EQ(run(*action, std::u16string(300000, u'.') + std::u16string(300000, u' ')), u"_");
}

TEST_F(CharacterLaws, AFillerThatIsForbiddenIsWrittenBack) {
    const auto action = make("Convert to NTFS", {{"fillerCharacter", u"?x"}});
    EXPECT_EQ(run(*action, u"a:b"), u"a_b");
    EXPECT_EQ(action->getParamString("fillerCharacter"), u"_");
    action->setValue(u"-x", "fillerCharacter");
    EXPECT_EQ(run(*action, u"a:b"), u"a-b");
    EXPECT_EQ(action->getParamString("fillerCharacter"), u"-");
}

TEST_F(CharacterLaws, TakeMoreThan255Blocks) {
    std::u16string name;
    for (int i = 0; i < 1000; ++i)
        name += u"1a";
    EXPECT_EQ(run(*make("Remove numbers", {{"blockMode", 1005}}), name), name.substr(1));
    EXPECT_EQ(run(*make("Remove numbers", {{"blockMode", 1006}}), name), name);
    for (const std::int32_t padding : {2147483647, -2147483647 - 1}) {
        const auto action = make("Change numbers", {{"blockMode", 1005}, {"padding", padding}});
        EXPECT_EQ(run(*action, name).size(), name.size() + 1023);
    }
}

TEST_F(CharacterLaws, SetsOfCharactersAreMergedInto) {
    const auto action = catalogue.newActionForName("Keep only specific characters");
    const auto merged = [&](const std::u16string& before, std::int32_t index) {
        action->setValue(before, "string");
        action->selectPattern(index);
        return action->getParamString("string");
    };
    for (std::int32_t i = -1; i <= static_cast<std::int32_t>(action->patternMenu().size()); ++i) {
        const auto set = merged(u"", i);
        const bool isSet = i >= 0 && i < 6 && !action->patternMenu()[static_cast<std::size_t>(i)].empty();
        EXPECT_EQ(isSet, !set.empty()) << i;
        EXPECT_EQ(merged(set, i), set) << i;
        const auto all = merged(u"\u00e9e\u0301\u00e9" + set, i); // only the set's own are there once
        EXPECT_EQ(all, u"\u00e9e\u0301\u00e9" + set) << i;
    }
    EXPECT_EQ(merged(u"a1b1\u00e99", 4), u"ab\u00e90123456789");
    EXPECT_EQ(merged(u"aVz", 1).substr(0, 3), u"V !"); // without the "V", as it has always been
}

} // namespace

} // namespace tavrin::test
