#include "common/Testing.h"
#include "platform/propertylists/UserDefaults.h"
#include "tags/MixedTokenFieldLogic.h"
#include "tags/StringToInvisiblesValueTransformer.h"
#include "tags/TagLibraryHelper.h"

namespace tavrin::test {

namespace {

using Texts = std::vector<std::u16string>;

std::string shown(const std::optional<Texts>& tokens) {
    if (!tokens)
        return "unchanged";
    std::string text;
    for (const auto& token : *tokens)
        text += "[" + text::toUtf8(token) + "]";
    return text;
}

TEST(MixedTokenField, RecognisesTagsWhileTheUserTypes) {
    const TagLibraryHelper library;
    const MixedTokenFieldLogic field(library);
    const struct {
        Texts value;
        std::size_t location;
        const char* expected;
    } cases[] = {
        {{}, 0, "unchanged"},
        {{u"abc<Year>"}, 9, "[abc][<Year>]"},
        {{u"abc<Year"}, 8, "[abc<Year]"},
        {{u"a>b>c"}, 5, "[abc]"},
        {{u"<x>b<y>c"}, 8, "[<x>b<y>c]"},
        {{u">"}, 1, "unchanged"},
        {{u"a<b<Year>c"}, 9, "[a<b][<Year>][c]"},
        // Text that waited for a tag is one object: it vanishes in front of the tag, and what is typed behind
        // shows in its place too.
        {{u"<x><Year>"}, 9, "[][<Year>]"},
        {{u"<x><Year>z"}, 10, "[z][<Year>][z]"},
        {{u"<x><Year><y><ISO>z"}, 18, "[z][<Year>][z][<ISO>][z]"},
        // Which entry is meant: a token takes one position, and an edge belongs to the entry in front.
        {{u"ab", u"<Year>", u"c<ISO>"}, 9, "[ab][<Year>][c][<ISO>]"},
        {{u"ab>", u"<Year>", u"c>"}, 3, "[ab][<Year>][c>]"},
        {{u"ab>", u"<Year>", u"c>"}, 4, "[ab>][<Year>][c>]"},
        {{u"ab>", u"<Year>", u"c>"}, 5, "[ab>][<Year>][c]"},
        {{u"ab>", u"<NoSuchTag>", u"c>"}, 15, "[ab>][<NoSuchTag>][c]"},
        {{u"<Year>\u0301"}, 7, "[<Year>\u0301]"},
        {{u"\U0001F600<ISO>"}, 7, "[\U0001F600][<ISO>]"},
    };
    for (const auto& each : cases)
        EXPECT_EQ(shown(field.controlTextDidChange(each.value, each.location)), each.expected)
            << shown(each.value) << " at " << each.location;
    EXPECT_TRUE(field.isToken(u"<numCds>"));
    EXPECT_FALSE(field.isToken(u"<NumCds>"));
}

TEST(StringToInvisibles, ShowsBlanksAndControlCharactersWhileItIsOn) {
    UserDefaults defaults;
    const StringToInvisiblesValueTransformer transformer(defaults);
    for (const auto& [text, shown] : {std::pair(u"a b\tc", "a·b→c"),
                                      {u"\r\n", "\u240D\u2424"},
                                      {u"a\u0001\u007f\u0085b\u202e", "a\u2023\u2023\u2023b\u2023"},
                                      {u"\u00a0\U0001F600e\u0301", "\u00a0\U0001F600e\u0301"},
                                      {u"\U000E0001", "\u2023"},
                                      {u"", ""}}) {
        defaults.setObject("showInvisibles", false);
        EXPECT_EQ(transformer.transformedValue(text), text);
        defaults.setObject("showInvisibles", true);
        EXPECT_EQ(text::toUtf8(*transformer.transformedValue(text)), shown);
    }
    EXPECT_EQ(transformer.transformedValue(std::nullopt), std::nullopt);
}

} // namespace

} // namespace tavrin::test
