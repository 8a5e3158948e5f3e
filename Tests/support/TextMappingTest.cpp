#include "support/text/Text.h"

#include <gtest/gtest.h>

namespace tavrin::text {
namespace {

TEST(TextNormalization, FormsOfOneText) {
    const struct {
        std::u16string_view text, composed, decomposed, bare;
    } cases[] = {
        {u"", u"", u"", u""},
        {u"plain name", u"plain name", u"plain name", u"plain name"},
        {u"Crème Brûlée", u"Crème Brûlée", u"Cre\u0300me Bru\u0302le\u0301e", u"Creme Brulee"},
        {u"e\u0301", u"é", u"e\u0301", u"e"},
        {u"q\u0307\u0323", u"q\u0323\u0307", u"q\u0323\u0307", u"q"},
        {u"\u212B", u"Å", u"A\u030A", u"A"},
        {u"\u1112\u1161\u11AB", u"한", u"\u1112\u1161\u11AB", u"\u1112\u1161\u11AB"},
        {u"\u0958", u"\u0915\u093C", u"\u0915\u093C", u"\u0915"}, // never composed again
        {u"का", u"का", u"का", u"का"},                             // a spacing mark stays
        {u"ﬁ²", u"ﬁ²", u"ﬁ²", u"ﬁ²"},                             // compatibility forms stay
        {u"\xD83D"
         u"e\u0301\xDCE9",
         u"\xD83Dé\xDCE9",
         u"\xD83D"
         u"e\u0301\xDCE9",
         u"\xD83D"
         u"e\xDCE9"},
        {u"\U0001D15E", u"\U0001D157\U0001D165", u"\U0001D157\U0001D165", u"\U0001D157\U0001D165"},
        {u"a\U0001E944", u"a\U0001E944", u"a\U0001E944", u"a"},
    };
    for (const auto& [text, composed, decomposedText, bare] : cases) {
        EXPECT_EQ(composed, precomposed(text)) << toUtf8(text);
        EXPECT_EQ(decomposedText, decomposed(text)) << toUtf8(text);
        EXPECT_EQ(bare, withoutDiacritics(text)) << toUtf8(text);
        EXPECT_EQ(text == composed, isPrecomposed(text)) << toUtf8(text);
        EXPECT_TRUE(canonicallyEqual(text, decomposedText) && canonicallyEqual(composed, text))
            << toUtf8(text);
        EXPECT_FALSE(canonicallyEqual(text, std::u16string(text) + u"x"));
    }
    EXPECT_FALSE(canonicallyEqual(u"é", u"e"));
    EXPECT_FALSE(canonicallyEqual(u"Ａ", u"A"));
    EXPECT_FALSE(canonicallyEqual(u"漢", u"字"));
}

/// The quick checks look at words of four units: each place of a text counts, and so do the limits.
TEST(TextNormalization, QuickChecksSeeEveryPlace) {
    for (std::size_t length = 1; length < 14; ++length)
        for (std::size_t place = 0; place < length; ++place)
            for (const char16_t unit : {u'\u0340', u'\u0374', u'\u2126', u'\uF900'}) {
                std::u16string text(length, u'\u02FF');
                text[place] = unit;
                EXPECT_FALSE(isPrecomposed(text)) << length << " " << place << " " << int{unit};
                EXPECT_NE(text, precomposed(text));
                EXPECT_NE(text, decomposed(text));
                std::u16string plain(length, u'\x7f');
                EXPECT_TRUE(isAscii(plain));
                plain[place] = unit == u'\u2126' ? u'\x80' : unit;
                EXPECT_FALSE(isAscii(plain));
            }
    EXPECT_EQ(u"----A\u0300", decomposed(u"----À"));
}

TEST(TextCase, FullMappingsOfTheRootLocale) {
    const struct {
        std::u16string_view text, upper, lower, folded;
    } cases[] = {
        {u"", u"", u"", u""},
        {u"@Az[`mZ{09", u"@AZ[`MZ{09", u"@az[`mz{09", u"@az[`mz{09"},
        {u"straße", u"STRASSE", u"straße", u"strasse"},
        {u"ÀÖ×ØÞ÷àþÿ", u"ÀÖ×ØÞ÷ÀÞŸ", u"àö×øþ÷àþÿ", u"àö×øþ÷àþÿ"},
        {u"µ", u"Μ", u"µ", u"μ"},
        {u"ΟΔΟΣ Σ", u"ΟΔΟΣ Σ", u"οδος σ", u"οδοσ σ"},
        {u"İI", u"İI", u"i\u0307i", u"i\u0307i"},
        {u"ﬁŉ", u"FIʼN", u"ﬁŉ", u"fiʼn"},
        {u"ПРИВЕТ", u"ПРИВЕТ", u"привет", u"привет"},
        {u"\U00010400", u"\U00010400", u"\U00010428", u"\U00010428"},
        {u"A\xDCE9\xD83D", u"A\xDCE9\xD83D", u"a\xDCE9\xD83D", u"a\xDCE9\xD83D"},
    };
    for (const auto& [text, upper, lower, folded] : cases) {
        EXPECT_EQ(upper, uppercased(text)) << toUtf8(text);
        EXPECT_EQ(lower, lowercased(text)) << toUtf8(text);
        EXPECT_EQ(folded, caseFolded(text)) << toUtf8(text);
        EXPECT_TRUE(equalIgnoringCase(text, folded)) << toUtf8(text);
    }
}

TEST(TextCase, ResultsThatOutgrowTheTextAreWhole) {
    std::u16string expected;
    for (int i = 0; i < 500; ++i)
        expected += u"\u0399\u0308\u0301";
    EXPECT_EQ(expected, uppercased(std::u16string(500, u'\u0390')));
    EXPECT_EQ(1500u, decomposed(std::u16string(500, u'\u01D5')).size());
}

TEST(TextCase, BytesLowerLikeTheirText) {
    const std::string_view cases[] = {"",
                                      "ABCxyz@[.TXT",
                                      "\xC3\x80\xC3\x96\xC3\x97\xC3\x9E\xC3\x9F\xC3\xB7 \xC2\xAA",
                                      "CAF\xC9.TXT",
                                      "A\xC3",
                                      "A\xC3Z",
                                      "\xC3\xC3\x80",
                                      "\x80\xBF\xC2Z",
                                      "\xCE\xA3\xCE\x91\xCE\xA3",
                                      "\xC4\xB0X\xFF",
                                      "\xE2\x84\xAA",
                                      "\xEA\x99\x80Z",
                                      "\xCD\xB0Z",
                                      "E\xCC\x81\xCD\x85Z",
                                      "\xE6\xBC\xA2Z\xED\x95\x9C",
                                      "\xE6Z\xC3",
                                      "\xED\xA0\x80\xC3\x89",
                                      "A LONGER NAME WITHOUT AN ACCENT.JPEG"};
    std::string lowered = "former content that is long enough to be in the way";
    for (const std::string_view bytes : cases) {
        lowercaseBytes(bytes, lowered);
        EXPECT_EQ(lowercased(fromBytes(bytes)), fromBytes(lowered)) << testing::PrintToString(bytes);
        EXPECT_EQ(toBytes(lowercased(fromBytes(bytes))), lowered) << testing::PrintToString(bytes);
    }
}

TEST(TextCase, EqualIgnoringCaseIsCanonical) {
    EXPECT_TRUE(equalIgnoringCase(u"NUL", u"nul"));
    EXPECT_TRUE(equalIgnoringCase(u"É", u"e\u0301"));
    EXPECT_TRUE(equalIgnoringCase(u"STRASSE", u"straße"));
    EXPECT_TRUE(equalIgnoringCase(u"ᾳ", u"ΑΙ"));
    EXPECT_FALSE(equalIgnoringCase(u"abc", u"abcd"));
    EXPECT_FALSE(equalIgnoringCase(u"[", u"{"));
    EXPECT_FALSE(equalIgnoringCase(u"ı", u"I"));
}

TEST(TextClasses, FollowTheGeneralCategory) {
    const struct {
        char32_t c;
        std::string_view classes; ///< Letter, Upper, lower, Space, Punctuation, Digit
    } cases[] = {
        {U'a', "Ll"},     {U'Z', "LU"},     {U'ǅ', "LU"},     {U'漢', "L"},     {U'ª', "L"},
        {U'\u0301', "L"}, {U'\u0903', "L"}, {U'\u20DD', "L"}, {U'5', "D"},      {U'٣', "D"},
        {U'Ⅷ', ""},       {U'²', ""},       {U'_', "P"},      {U'-', "P"},      {U'«', "P"},
        {U'+', ""},       {U'$', ""},       {U' ', "S"},      {U'\t', "S"},     {U'\r', "S"},
        {U'\x85', "S"},   {U'\u2028', "S"}, {U'\u00A0', "S"}, {U'\u3000', "S"}, {U'\x08', ""},
        {U'\x0E', ""},    {U'\x1F', ""},    {U'\u200B', ""},  {U'𝒜', "LU"},     {U'😀', ""},
        {0xD83D, ""},     {0xDCE9, ""},     {0, ""},
    };
    for (const auto& [c, classes] : cases) {
        std::string found;
        found += isLetter(c) ? "L" : "";
        found += isUppercaseLetter(c) ? "U" : "";
        found += isLowercaseLetter(c) ? "l" : "";
        found += isWhitespaceOrNewline(c) ? "S" : "";
        found += isPunctuation(c) ? "P" : "";
        found += isDecimalDigit(c) ? "D" : "";
        EXPECT_EQ(classes, found) << std::hex << static_cast<std::uint32_t>(c);
    }
}

TEST(TextIntValue, ReadsTheStartOfAText) {
    const struct {
        std::u16string_view text;
        std::int32_t value;
    } cases[] = {{u"", 0},
                 {u"12", 12},
                 {u" \t\n\u00A0+7x", 7},
                 {u"-3.9", -3},
                 {u"--3", 0},
                 {u"+ 3", 0},
                 {u"x5", 0},
                 {u"1e9", 1},
                 {u"-", 0},
                 {u"00000000000010", 10},
                 {u"٣", 0},
                 {u"2147483647", 2147483647},
                 {u"2147483648", 2147483647},
                 {u"-2147483648", -2147483647 - 1},
                 {u"-2147483649", -2147483647 - 1},
                 {u"99999999999999999999999", 2147483647},
                 {u"-99999999999999999999999", -2147483647 - 1}};
    for (const auto& [text, value] : cases)
        EXPECT_EQ(value, intValue(text)) << toUtf8(text);
}

} // namespace
} // namespace tavrin::text
