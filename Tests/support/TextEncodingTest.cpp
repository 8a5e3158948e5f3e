#include "support/text/Text.h"

#include <gtest/gtest.h>

#include <random>

namespace tavrin::text {
namespace {

/// Bytes from an alphabet in which broken and whole sequences are both frequent.
std::string randomBytes(std::mt19937& random) {
    static constexpr std::string_view alphabet = "aZ.\x7f\x80\x8f\x90\x9f\xa0\xbf\xc0\xc1\xc2\xc3\xdf\xe0\xe2"
                                                 "\xed\xef\xf0\xf1\xf4\xf5\xff";
    std::string bytes(random() % 40, '\0');
    const bool isAnyByte = random() % 4 == 0;
    for (char& byte : bytes)
        byte = isAnyByte ? static_cast<char>(random()) : alphabet[random() % alphabet.size()];
    return bytes;
}

TEST(TextEncoding, BytesSurviveTheWayThroughText) {
    std::mt19937 random(20240607);
    std::u16string text;
    std::string back;
    for (int round = 0; round < 200'000; ++round) {
        const std::string bytes = randomBytes(random);
        fromBytes(bytes, text);
        ASSERT_TRUE(toBytes(text, back)) << testing::PrintToString(bytes);
        ASSERT_EQ(bytes, back);
        ASSERT_EQ(bytes, toUtf8(text));
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
    const struct {
        std::string_view bytes;
        std::u16string_view text;
    } cases[] = {
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
    const struct {
        std::u16string_view text;
        std::string_view shown;
    } cases[] = {
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
            EXPECT_EQ(i < j, order < 0) << i << " " << j;
            EXPECT_EQ(i == j, order == 0) << i << " " << j;
        }
}

} // namespace
} // namespace tavrin::text
