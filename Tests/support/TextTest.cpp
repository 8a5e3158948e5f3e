
#include "common/Testing.h"
#include "support/text/DisplayText.h"
#include "support/text/KQStringUtilities.h"

#include <unicode/ubrk.h>

namespace tavrin::text {
namespace {

TEST(TextEncoding, BytesSurviveTheWayThroughText) {
    // Broken and whole sequences are both frequent.
    static constexpr std::string_view alphabet = "aZ.\x7f\x80\x8f\x90\x9f\xa0\xbf\xc0\xc1\xc2\xc3\xdf\xe0\xe2"
                                                 "\xed\xef\xf0\xf1\xf4\xf5\xff";
    std::mt19937 random(20240607);
    std::u16string text;
    std::string back;
    for (int round = 0; round < 200'000; ++round) {
        std::string bytes(random() % 40, '\0');
        const bool isAnyByte = random() % 4 == 0;
        for (char& byte : bytes)
            byte = isAnyByte ? static_cast<char>(random()) : alphabet[random() % alphabet.size()];
        fromBytes(bytes, text);
        ASSERT_TRUE(toBytes(text, back)) << testing::PrintToString(bytes);
        ASSERT_EQ(bytes, back);
        ASSERT_EQ(bytes, toUtf8(text));
        ASSERT_EQ(isUtf8(bytes), !hasEscape(text)) << testing::PrintToString(bytes);
        ASSERT_EQ(text, fromBytes(bytes)) << "a reused buffer decodes otherwise";
    }
}

TEST(TextEncoding, TextSurvivesTheWayThroughBytesOrIsRefused) {
    static constexpr std::u16string_view alphabet =
        u"aé\u0300漢\xD83D\xDC80\xDCC3\xDCA9\xDCE2\xDCF0\xDC00\xDFFF";
    std::mt19937 random(7);
    int refused = 0;
    for (int round = 0; round < 200'000; ++round) {
        std::u16string text(random() % 6, u'\0');
        for (char16_t& unit : text)
            unit = alphabet[random() % alphabet.size()];
        const auto bytes = toBytes(text);
        ASSERT_TRUE(!bytes || fromBytes(*bytes) == text) << testing::PrintToString(text);
        refused += !bytes;
    }
    EXPECT_GT(refused, 1000);
}

TEST(TextEncoding, OnlyWellFormedSequencesAreDecoded) {
    const std::pair<std::string_view, std::u16string_view> cases[] = {
        {"", u""},
        {"a/longer name.txt", u"a/longer name.txt"},
        {"caf\xC3\xA9", u"café"},
        {"\xF0\x9F\x98\x80", u"😀"},
        {"\xEF\xBF\xBF\xF4\x8F\xBF\xBF", u"\uFFFF\U0010FFFF"},
        {"caf\xE9.txt", u"caf\xDCE9.txt"},
        {"\xC0\xAF", u"\xDCC0\xDCAF"},                     // overlong
        {"\xE0\x80\xAF", u"\xDCE0\xDC80\xDCAF"},           // overlong
        {"\xED\xA0\x80", u"\xDCED\xDCA0\xDC80"},           // a surrogate
        {"\xF4\x90\x80\x80", u"\xDCF4\xDC90\xDC80\xDC80"}, // above 10FFFF
        {"\xE2\x82", u"\xDCE2\xDC82"},                     // cut short
        {"\xE2\x82\xC3\xA9", u"\xDCE2\xDC82é"},            // broken off by a whole one
        {"12345678\xF0\x9F", u"12345678\xDCF0\xDC9F"},
    };
    for (const auto& [bytes, text] : cases) {
        EXPECT_EQ(text, fromBytes(bytes)) << testing::PrintToString(bytes);
        EXPECT_EQ(bytes, toBytes(text)) << testing::PrintToString(bytes);
    }
}

TEST(TextEncoding, TextsThatAreNoFileNameAreRefusedButShown) {
    const std::pair<std::u16string_view, std::string_view> cases[] = {
        {u"a\xD83D", "a\xEF\xBF\xBD"}, // the high half of a pair
        {u"\xDE00z", "\xEF\xBF\xBDz"}, // the low half of a pair that stands for no byte
        {u"\xDC7F", "\xEF\xBF\xBD"},
        {u"\xDD00", "\xEF\xBF\xBD"},
        {u"x\xDCC3\xDCA9", "x\xC3\xA9"}, // bytes of an é
        {u"\xDCFF\xDCF0\xDC9F\xDC98\xDC80", "\xFF\xF0\x9F\x98\x80"},
    };
    for (const auto& [text, shown] : cases) {
        EXPECT_EQ(std::nullopt, toBytes(text)) << testing::PrintToString(text);
        EXPECT_EQ(shown, toUtf8(text)) << testing::PrintToString(text);
    }
}

TEST(TextEncoding, OrderIsThatOfTheCodePoints) {
    const std::u16string_view ascending[] = {u"",       u"A",      u"AA",        u"a",       u"é",
                                             u"\xD83D", u"\xDCE9", u"\uFFFD",    u"\uFFFDa", u"😀",
                                             u"😀a",     u"😁",      u"\U0010FFFF"};
    const std::size_t count = std::size(ascending);
    for (std::size_t i = 0; i < count; ++i)
        for (std::size_t j = 0; j < count; ++j) {
            const int order = compareByCodePoint(ascending[i], ascending[j]);
            EXPECT_EQ((i > j) - (i < j), (order > 0) - (order < 0)) << i << " " << j;
        }
}

TEST(DisplayText, EscapesWhatWouldActOrIsNoText) {
    EXPECT_EQ(display::visible("a\n\t\x1b[0m\x7f \xc2\x85 caf\xe9 é😀\u202Eb\u2066\u2069\u200E\u2070\u2029"),
              "a\\n\\t\\x1b[0m\\x7f \\u0085 caf\\xe9 é😀\\u202eb\\u2066\\u2069\\u200e\u2070\u2029");
    std::string json;
    display::appendJson(u"a\"\\\n\x7f\u0085\u00A0 \xDCE9 \xD83D 😀\xD83D", json);
    EXPECT_EQ(json, "\"a\\\"\\\\\\u000a\\u007f\\u0085\u00A0 \\udce9 \\ud83d 😀\\ud83d\"");
}

TEST(DisplayText, ColumnsOfATerminal) {
    const std::pair<std::u16string_view, std::size_t> cases[] = {
        {u"", 0},     {u"plain", 5},        {u"e\u0301é", 2},
        {u"日本", 4}, {u"\uFF21\uFF71", 3}, {u"\u1112\u1161\u11AB한", 4},
        {u"😀", 2},    {u"a\u200Db", 2},     {u"❤\uFE0F", 2},
    };
    for (const auto& [text, columns] : cases)
        EXPECT_EQ(display::columns(text), columns) << text::toUtf8(text);
}

TEST(TextNormalization, FormsOfOneText) {
    const std::u16string_view cases[][4] = {
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
        {u"\xD83Do\u0301\xDCE9", u"\xD83Dó\xDCE9", u"\xD83Do\u0301\xDCE9", u"\xD83Do\xDCE9"},
        {u"\U0001D15E", u"\U0001D157\U0001D165", u"\U0001D157\U0001D165", u"\U0001D157\U0001D165"},
        {u"a\U0001E944", u"a\U0001E944", u"a\U0001E944", u"a"},
    };
    for (const auto& [text, composed, decomposedText, bare] : cases) {
        EXPECT_EQ(composed, precomposed(text)) << toUtf8(text);
        EXPECT_EQ(decomposedText, decomposed(text)) << toUtf8(text);
        EXPECT_EQ(bare, withoutDiacritics(text)) << toUtf8(text);
        EXPECT_EQ(text == composed, isPrecomposed(text)) << toUtf8(text);
        EXPECT_TRUE(canonicallyEqual(text, decomposedText)) << toUtf8(text);
        EXPECT_TRUE(canonicallyEqual(composed, text)) << toUtf8(text);
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
    const std::u16string_view cases[][4] = {
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
    std::string lowered = "former content that is long enough to be in the way";
    for (const std::string_view bytes :
         {"", "ABCxyz@[.TXT", "\xC3\x80\xC3\x96\xC3\x97\xC3\x9E\xC3\x9F\xC3\xB7 \xC2\xAA", "CAF\xC9.TXT",
          "A\xC3", "A\xC3Z", "\xC3\xC3\x80", "\x80\xBF\xC2Z", "\xCE\xA3\xCE\x91\xCE\xA3", "\xC4\xB0X\xFF",
          "\xE2\x84\xAA", "\xEA\x99\x80Z", "\xCD\xB0Z", "E\xCC\x81\xCD\x85Z", "\xE6\xBC\xA2Z\xED\x95\x9C",
          "\xE6Z\xC3", "\xED\xA0\x80\xC3\x89", "A LONGER NAME WITHOUT AN ACCENT.JPEG"}) {
        lowercaseBytes(bytes, lowered);
        EXPECT_EQ(toBytes(lowercased(fromBytes(bytes))), lowered) << testing::PrintToString(bytes);
    }
}

TEST(TextCase, EqualIgnoringCaseIsCanonical) {
    EXPECT_TRUE(equalIgnoringCase(u"É", u"e\u0301"));
    EXPECT_TRUE(equalIgnoringCase(u"ᾳ", u"ΑΙ"));
    EXPECT_FALSE(equalIgnoringCase(u"abc", u"abcd"));
    EXPECT_FALSE(equalIgnoringCase(u"[", u"{"));
    EXPECT_FALSE(equalIgnoringCase(u"ı", u"I"));
}

TEST(TextClasses, FollowTheGeneralCategory) {
    const std::pair<const char*, std::u32string> cases[] = {
        {"letter lower", U"a"},
        {"letter upper", U"Zǅ𝒜"},
        {"letter", U"漢ª\u0301\u0903\u20DD"},
        {"digit", U"5٣"},
        {"punctuation", U"_-«"},
        {"space", U" \t\r\x85\u2028\u00A0\u3000"},
        {"", {U'Ⅷ', U'²', U'+', U'$', 8, 0x0E, 0x1F, 0x200B, U'😀', 0xD83D, 0xDCE9, 0}},
    };
    for (const auto& [classes, characters] : cases)
        for (const char32_t c : characters) {
            std::string found;
            found += isLetter(c) ? " letter" : "";
            found += isUppercaseLetter(c) ? " upper" : "";
            found += isLowercaseLetter(c) ? " lower" : "";
            found += isWhitespaceOrNewline(c) ? " space" : "";
            found += isPunctuation(c) ? " punctuation" : "";
            found += isDecimalDigit(c) ? " digit" : "";
            EXPECT_EQ(classes, found.substr(found.empty() ? 0 : 1)) << std::hex << std::uint32_t{c};
        }
}

using Edges = std::vector<std::size_t>;

/// The rules without any shortcut.
Edges edgesByTheRules(UBreakIterator* rules, std::u16string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    ubrk_setText(rules, text.data(), static_cast<std::int32_t>(text.size()), &status);
    EXPECT_TRUE(U_SUCCESS(status));
    Edges result = {0};
    for (auto edge = ubrk_next(rules); edge != UBRK_DONE; edge = ubrk_next(rules))
        result.push_back(static_cast<std::size_t>(edge));
    return result;
}

Edges edgesStepByStep(std::u16string_view text) {
    Edges result = {0};
    while (result.back() < text.size())
        result.push_back(composedSequenceEnd(text, result.back()));
    return result;
}

TEST(TextSequences, ShortcutsAgreeWithTheRules) {
    // At least one character of every class of the rules, and the neighbours of the shortcuts' limits.
    static constexpr std::u32string_view alphabet =
        U"ab \r\n\x01\x7F\u0085\u00AD\u00A9é\u02FF\u0300\u0323\u034F\u036F\u0370й"
        U"\u0483\u05D0\u05B0\u0600\u0E33\u0E01\u0915\u0937\u093F\u094D\u093C\u0D4E\u1100\u1161\u11A8\uD7B0"
        U"\uD7CB한가각"
        U"\u200B\u200C\u200D\u2028\u20E3\u2764\uFE0F漢\u302E\uFF9E\U0001F1E6\U0001F1F8\U0001F44D\U0001F3FD"
        U"\U0001F469\U0001F4BB\U00011070\U000110BD\U000E0041";
    std::mt19937 random(99);
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UBreakIterator, decltype(&ubrk_close)> rules(
        ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status), &ubrk_close);
    Edges found;
    for (int round = 0; round < 100'000; ++round) {
        std::u16string text;
        for (auto count = random() % 10; count > 0; --count) {
            const char32_t c = alphabet[random() % alphabet.size()];
            if (random() % 20 == 0)
                text += random() % 2 ? u'\xDCE9' : u'\xD83D';
            else if (c < 0x10000)
                text += static_cast<char16_t>(c);
            else
                text.append({U16_LEAD(c), U16_TRAIL(c)});
        }
        sequenceEdges(text, found);
        ASSERT_EQ(edgesByTheRules(rules.get(), text), found) << testing::PrintToString(text);
        ASSERT_EQ(found, edgesStepByStep(text)) << testing::PrintToString(text);
    }
}

TEST(TextSequences, AreWhatAReaderCallsACharacter) {
    for (const std::u16string each :
         {u"", u"a|b", u"e\u0301|x", u"a\u0323\u0302|b", u"\r\n|\n|\r|x", u"👩\u200D💻|👩", u"👍\U0001F3FD|!",
          u"🇩🇪|🇫🇷|🇫", u"\u1100\u1161\u11A8|\u1100\u1161", u"한|글", u"1\uFE0F\u20E3|2", u"\u0300|a",
          u"\xD83D|a|\xDCE9|\xDCE8"}) {
        std::u16string text = each;
        std::erase(text, u'|');
        std::u16string found;
        for (const std::u16string& sequence : KQStringUtilities::decomposeIntoStringArray(text))
            found += (found.empty() ? u"" : u"|") + sequence;
        EXPECT_EQ(each, found);
        EXPECT_EQ(each.substr(0, each.find(u'|')), firstComposedSequence(text)) << toUtf8(each);
    }
}

} // namespace
} // namespace tavrin::text
