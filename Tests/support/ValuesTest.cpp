#include "common/LogRecorder.h"
#include "common/Testing.h"
#include "support/application/ApplicationNameSubstitution.h"
#include "support/application/DebugLog.h"
#include "support/application/StackedViewLayout.h"
#include "support/text/KQStringUtilities.h"
#include "support/text/PathParts.h"
#include "support/values/CalendarFormat.h"
#include "support/values/Crc32.h"
#include "support/values/DecimalNumbers.h"
#include "support/values/PropertyValue.h"
#include "support/values/VersionComparison.h"

#include <cmath>

namespace tavrin {
namespace {

TEST(PropertyValue, LooseConversions) {
    const std::int32_t least = std::numeric_limits<std::int32_t>::min();
    const std::int32_t most = std::numeric_limits<std::int32_t>::max();
    std::u16string texts;
    const auto expect = [&texts](std::int32_t integer, bool truth, const PropertyArray& values) {
        for (const PropertyValue& value : values) {
            EXPECT_EQ(integer, intValue(value)) << description(value);
            EXPECT_EQ(truth, boolValue(value)) << description(value);
            if (const std::u16string* text = value.asText())
                EXPECT_EQ(*text, textValue(value));
            else
                texts += textValue(value) + u"|";
        }
    };
    expect(1, true, {true, u"1e9"});
    expect(42, true, {42});
    expect(most, true,
           {std::int64_t{5'000'000'000}, 1e300, u"2147483647", u"2147483648", u"99999999999999999999999"});
    expect(least, true,
           {std::int64_t{-5'000'000'000}, -INFINITY, u"-2147483648", u"-2147483649",
            u"-99999999999999999999999"});
    expect(-2, true, {-2.9});
    expect(-3, true, {u"-3.9"});
    expect(3, true, {3.0});
    expect(7, true, {u" \t\n+7x"});
    expect(10, true, {u"00000000000010"});
    expect(12, true, {u" 12 apes"});
    expect(0, true, {0.1, std::nan(""), u" yes", u"Tern"});
    expect(0, false,
           {false, 0, 0.0, u"0", u"", u" \n", u"no", u"--3", u"+ 3", u"x5", u"-", u"٣", PropertyDate{5},
            PropertyData{{1}}, PropertyArray{1}, PropertyDictionary{{"a", 1}}});
    EXPECT_EQ(texts, u"1|42|5000000000|1e+300|-5000000000|-inf|-2.9|3|0.1|nan|0|0|0|||||");
    EXPECT_EQ(intValue(u"\u00A0+7x"), 7);
    EXPECT_TRUE(PropertyValue(true).isNumber());
    EXPECT_FALSE(PropertyValue(u"1").isNumber());
    EXPECT_FALSE(PropertyValue(1) == PropertyValue(1.0));
}

TEST(PropertyValue, IsDescribed) {
    const PropertyDictionary dictionary = {
        {"b", PropertyArray{1, true, 0.5}},
        {"a", u"caf\u00E9 \"x\"\n\xDCE9"},
        {"c", PropertyDictionary{{"date", PropertyDate{1.5}}, {"bytes", PropertyData{{1, 2}}}}},
    };
    EXPECT_EQ("{\"a\": \"caf\xC3\xA9 \\\"x\\\"\\x0a\xE9\", \"b\": [1, true, 0.5], "
              "\"c\": {\"bytes\": 2 bytes, \"date\": date 1.5}}",
              description(dictionary));
}

TEST(DebugLog, WritesOnlyWhileOn) {
    test::LogRecorder lines;
    debugLog("on {} {}", 2, "x");
    setDebugLogIsOn(false);
    debugLog("off");
    EXPECT_EQ(std::vector<std::string>{"on 2 x"}, lines.lines());
}

TEST(Crc32, IsTheCommonOneHoweverTheBytesAreCut) {
    const std::string_view text = "The quick brown fox jumps over the lazy dog";
    for (std::size_t cut = 0; cut <= text.size(); ++cut)
        EXPECT_EQ(crc32(text.substr(cut), crc32(text.substr(0, cut))), 0x414FA339U);
}

TEST(PathParts, CutPathsAndJoinThemAgain) {
    const std::string_view cases[][6] = {
        {"/a/b.c.txt", "/a/", "/a", "b.c.txt", "/a/b.c", "txt"},
        {"/b", "/", "/", "b", "/b", ""},
        {"/", "/", "/", "", "/", ""},
        {"b.x", "", "", "b.x", "b", "x"},
        {"/a.d/b", "/a.d/", "/a.d", "b", "/a.d/b", ""},
        {"/a/.b", "/a/", "/a", ".b", "/a/.b", ""},
        {"/a/b.", "/a/", "/a", "b.", "/a/b", ""},
        {"", "", "", "", "", ""},
    };
    for (const auto& [path, prefix, folder, name, stem, extension] : cases) {
        const PathParts parts(path);
        EXPECT_EQ(std::tuple(folder, name), std::tuple(parts.folder, parts.name)) << path;
        EXPECT_EQ(std::tuple(prefix, name), std::tuple(folderPrefix(path), lastComponent(path))) << path;
        EXPECT_EQ(std::tuple(stem, extension), std::tuple(withoutExtension(path), extensionOf(path))) << path;
        if (path.starts_with('/')) {
            EXPECT_EQ(path, joinedPath(parts.folder, parts.name));
        }
    }
}

TEST(KQStringUtilities, ExpandNumberBlocks) {
    // In what is expected, behind a bar, < and > stand around the digits of a block.
    for (const std::u16string each : {u"|", u"name|name", u"a1|a<1>", u"12-0034x|<12>-<34>x", u"-5|-<5>",
                                      u"000|<0>", u"2147483647|<2147483647>", u"2147483648|<2147483647>",
                                      u"20240607123456789 b|<2147483647> b", u"٣|٣"}) {
        const std::size_t bar = each.find(u'|');
        std::u16string expanded = each.substr(bar + 1);
        for (std::size_t begin; (begin = expanded.find(u'<')) != std::u16string::npos;) {
            const std::size_t end = expanded.find(u'>');
            expanded.erase(end, 1);
            expanded.replace(begin, 1, 33 - (end - begin), u'0');
        }
        EXPECT_EQ(expanded, KQStringUtilities::expandNumberBlocks(each.substr(0, bar)));
    }
}

TEST(KQStringUtilities, SmallMappings) {
    using Utilities = KQStringUtilities;
    EXPECT_EQ(u"Hello world?", Utilities::sentenceCase(u"hELLO WORLD?"));
    EXPECT_EQ(u"SSette 1", Utilities::sentenceCase(u"ßETTE 1"));
    EXPECT_EQ(u"", Utilities::sentenceCase(u""));
    EXPECT_EQ(std::nullopt, Utilities::sentenceCase(std::nullopt));
    EXPECT_EQ(u"\U00010400x", Utilities::sentenceCase(u"\U00010400X")) << "a half of a pair has no case";
    EXPECT_EQ(u"a/b/c", Utilities::replaceColonWithForwardSlash(u"a:b/c"));
    EXPECT_EQ(u"a:b:c", Utilities::replaceForwardSlashWithColon(u"a:b/c"));
}

TEST(ApplicationName, OfTheSecondEdition) {
    using Formatter = ApplicationNameSubstitutionStringFormatter;
    EXPECT_EQ(Formatter::stringForObjectValue(u"Tavrin 8, TavrinTavrin 9"), u"Morvane 9, MorvaneMorvane 9");
    EXPECT_FALSE(Formatter::stringForObjectValue(std::nullopt));
}

TEST(StackedViewLayout, TheFlexibleViewTakesWhatIsFree) {
    // The heights, the flexible view and its preferred height, the visible height; the height of the stack,
    // and the place and the height of each view.
    const std::tuple<std::vector<double>, std::optional<std::size_t>, int, double, const char*> cases[] = {
        {{}, {}, 0, 50, "50:"},
        {{20, 30}, {}, 0, 40, "50: 0+20 20+30"},
        {{20, 30}, {}, 0, 90, "90: 0+20 20+30"},
        {{20, 1, 30}, 1, 100, 120, "150: 0+20 20+100 120+30"}, // no extra
        {{20, 999, 30},
         1,
         100,
         150,
         "150: 0+20 20+100 120+30"}, // the frame of the flexible view does not count
        {{20, 1, 30}, 1, 100, 158, "158: 0+20 20+108 128+30"}, // an extra of 8
        {{20, 1, 30}, 1, 100, 159, "159: 0+20 20+101 121+30"}, // of 9
        {{20, 1, 30}, 1, 100, 250, "250: 0+20 20+192 212+30"},
        {{20.9, 1}, 1, 10, 39.8, "39.8: 0+20.9 20.9+11"}, // 39 less 30: whole points, an extra of 9
        {{20.2, 1}, 1, 10, 38.9, "38.9: 0+20.2 20.2+18"}, // 38 less 30
    };
    for (const auto& [heights, flexi, preferred, visible, expected] : cases) {
        const auto layout = StackedViewLayout::of(heights, flexi, preferred, visible);
        std::string found = fmt::format("{}:", layout.height);
        for (const auto& place : layout.places)
            found += fmt::format(" {}+{}", place.top, place.height);
        EXPECT_EQ(found, expected);
    }
}

/// A text of the table: "-" is the empty one, and "N*c" stands for the character N times.
std::string decoded(const std::string& word) {
    if (word == "-")
        return "";
    const std::size_t star = word.find('*');
    return star == std::string::npos ? word
                                     : std::string(std::stoul(word), word[star + 1]) + word.substr(star + 2);
}

TEST(VersionComparison, FollowsTheTable) {
    std::ifstream table(TAVRIN_TEST_DATA "/versions.txt");
    int rows = 0;
    for (std::string line, rule, first, second; std::getline(table, line);) {
        std::istringstream words(line.substr(0, line.find('#')));
        int expected = 0;
        if (!(words >> rule >> first >> second >> expected))
            continue;
        ++rows;
        const std::string a = decoded(first);
        const std::string b = decoded(second);
        const int standard = VersionComparison::standardCompareVersion(a, b);
        EXPECT_EQ(rule == "update" ? VersionComparison::compareVersion(a, b) : standard, expected) << line;
        EXPECT_EQ(standard, -VersionComparison::standardCompareVersion(b, a)) << line;
    }
    EXPECT_GT(rows, 50);
}

TEST(VersionComparison, CutsIntoChunksOfOneType) {
    std::string found;
    for (const char* version : {"", "10.4b12", "..", "a-b.1", "1\xC3\xA9"}) {
        for (const std::string_view chunk : VersionComparison::splitVersionString(version))
            found.append(chunk) += '|';
        found += '\n';
    }
    EXPECT_EQ(found, "\n10|.|4|b|12|\n.|.|\na-b|.|1|\n1|\xC3\xA9|\n");
}

TEST(DecimalNumbers, FollowTheLocale) {
    const std::tuple<const char*, std::vector<std::u16string>, std::u16string> cases[] = {
        {"C", {u"03", u"12", u"-7", u"A", u"", u"3 of 4"}, u"3|12|-7|none|none|none|"},
        {"en_US.UTF-8", {u"1234", u"1.23456"}, u"1,234|1.235|"},
        {"de_DE.UTF-8", {u"1234,5"}, u"1.234,5|"},
        {"de_DE@euro", {u"1.234,5"}, u"1.234,5|"},
    };
    for (const auto& [locale, texts, expected] : cases) {
        const DecimalNumbers numbers(locale);
        std::u16string found;
        for (const std::u16string& text : texts) {
            const auto number = numbers.numberFrom(text);
            found += (number ? numbers.textOf(*number) : u"none") + u"|";
        }
        EXPECT_EQ(found, expected) << locale;
    }
}

/// A zone told by rules, so that no table of zones is needed, and messages in a language of their own.
class CalendarFormats : public testing::Test {
  protected:
    test::LocalTime zone;
    test::Variable language{"LC_ALL", "fi_FI.UTF-8"};

    /// Each case is a locale, a pattern and behind " = " what it gives.
    static void expectAt(double seconds, const std::vector<std::string>& cases) {
        for (const std::string& each : cases) {
            const std::size_t space = each.find(' ');
            const std::size_t equals = each.find(" = ", space);
            const auto names = CalendarNames::of(each.substr(0, space));
            const std::u16string pattern = text::fromUtf8(each.substr(space + 1, equals - space - 1));
            std::u16string result;
            CalendarFormat(pattern, names).append(LocalMoment::at(seconds).value(), result);
            EXPECT_EQ(text::toUtf8(result), each.substr(equals + 3)) << each;
        }
    }
};

constexpr double june = 1718343065;      // Friday 2024-06-14 07:31:05 in summer time
constexpr double midnight = 1704063600;  // Monday 2024-01-01 00:00:00
constexpr double longAgo = -62135600400; // Monday 0001-01-01 00:00:00 in the calendar of the system

TEST_F(CalendarFormats, GiveTheFieldsOfADate) {
    expectAt(june + 0.25, {"C %Y-%m-%d %H:%M:%S.%F %j %y %w = 2024-06-14 07:31:05.250 166 24 5"});
    expectAt(midnight, {"C %e|%d|%1m|%1H|%3M|%9Y|%0S|%1j = 1|01|1|0|000|000002024|0|1",
                        "C %I%p %1I = 12AM 12", "C %Z %z = CET +0100"});
    expectAt(midnight + 12 * 3600, {"C %I%p %1I = 12PM 12"});
    expectAt(midnight + 13 * 3600, {"C %I %1I %p = 01 1 PM"});
    expectAt(longAgo, {"C %Y %y = 0001 01"});
    expectAt(midnight + 0.999999, {"C %F = 999"});
    expectAt(-0.001, {"C %S%F = 59999"});
    expectAt(1718343065.123, {"C %F = 123"});
    // What is no field stays, digits too; two signs are one.
    expectAt(june, {"C 100%% %Q %3Q %x é%  = 100% %Q %3Q %x é% ", "C %%Y% = %Y%", "C %5 = %5",
                    "C %5A = Friday", "C  = ", "C %Z %z = CEST +0200"});
}

TEST_F(CalendarFormats, SpeakTheLanguageOfTheLocale) {
    // Abbreviations without stops, digits and calendar always the same.
    expectAt(midnight, {"de_DE.UTF-8 %a %A %e %b %B = Mo Montag 1 Jan Januar"});
    expectAt(midnight + 60 * 86400, {"de_DE@euro %b = März"});
    expectAt(june, {"C.UTF-8 %A, %e %B %Y; %a %b = Friday, 14 June 2024; Fri Jun", "es_ES %B %p = junio am",
                    "ru_RU.UTF-8 %e %B = 14 июня", "fa_IR %Y %e %B = 2024 14 ژوئن", "th_TH %Y %b = 2024 มิย",
                    "xx_nowhere %Y %B = 2024 June", " %B = June", "nn_NO %B = juni", "no_NO %B = juni",
                    "iw_IL %B = יוני", "tl_PH %B = Hunyo", "ca_ES@valencia %B = de juny",
                    "zh_CN.GB18030 %B = 六月", "pt_BR %B = junho"});
}

TEST_F(CalendarFormats, KnowNoMomentBeyondAllCalendars) {
    for (const double seconds : {1e17, -1e300, std::strtod("nan", nullptr)})
        EXPECT_FALSE(LocalMoment::at(seconds)) << seconds;
}

} // namespace
} // namespace tavrin
