#include "platform/propertylists/PropertyList.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <clocale>
#include <limits>
#include <random>

namespace tavrin {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

std::string list(const std::string& content) {
    return "<plist version=\"1.0\">\n" + content + "\n</plist>\n";
}

PropertyValue valueOf(std::string_view bytes) {
    auto result = PropertyList::fromBytes(bytes);
    if (const auto* error = std::get_if<PropertyListError>(&result))
        throw std::runtime_error(error->message);
    return std::get<PropertyValue>(std::move(result));
}

std::string errorOf(std::string_view bytes) {
    const auto result = PropertyList::fromBytes(bytes);
    const auto* error = std::get_if<PropertyListError>(&result);
    return error != nullptr ? error->message : "read without an error";
}

TEST(PropertyListXml, ReadsEachKindOfValue) {
    const std::pair<const char*, PropertyValue> cases[] = {
        {"<string>a &lt;&amp;&#x1F600; b</string>", u"a <&\U0001F600 b"},
        {"<string/>", u""},
        {"<string> \n\tkept </string>", u" \n\tkept "},
        {"<string><![CDATA[<dict>]]></string>", u"<dict>"},
        {"<string>a<!-- no text -->b</string>", u"ab"},
        {"<integer>-9223372036854775808</integer>", std::numeric_limits<std::int64_t>::min()},
        {"<integer>\n +42 </integer>", 42},
        {"<real>1.5e3</real>", 1500.0},
        {"<real>-infinity</real>", -std::numeric_limits<double>::infinity()},
        {"<true/>", true},
        {"<false></false>", false},
        {"<date>2001-01-01T00:00:01Z</date>", PropertyDate{1}},
        {"<date>2000-02-29T23:59:59Z</date>", PropertyDate{-26438401}},
        {"<data> AP+/\n QQ== </data>", PropertyData{{0x00, 0xFF, 0xBF, 0x41}}},
        {"<data></data>", PropertyData{}},
        {"<array><true/><array/></array>", PropertyArray{true, PropertyArray{}}},
        {"<dict><key>b</key><integer>1</integer><key/><dict/></dict>",
         PropertyDictionary{{"", PropertyDictionary{}}, {"b", 1}}},
    };
    for (const auto& [xml, value] : cases)
        EXPECT_TRUE(valueOf(list(xml)) == value) << xml << description(valueOf(list(xml)));
    EXPECT_TRUE(valueOf("\xEF\xBB\xBF" + list("<string>\xC3\xA9</string>")) == PropertyValue(u"é"));
    EXPECT_TRUE(valueOf("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>" + list("<string>\xE9</string>")) ==
                PropertyValue(u"é"));
}

TEST(PropertyListXml, RefusesWhatIsNoListAndTellsTheLine) {
    const std::pair<std::string, const char*> cases[] = {
        {"", "the property list is empty"},
        {" ", "line 1: "},
        {"{ a = b; }", "line 1: "},
        {"<plist/>", "the property list is empty"},
        {"<html/>", "line 1: not a property list but: html"},
        {list("<integer>\nabc</integer>"), "line 3: not an integer: \nabc"},
        {list("<dict><key>a</key>\n<key>b</key><true/></dict>"), "line 3: key without a value: a"},
        {list("<true/>\n<true/>"), "line 3: more than one value at the top"},
        {"<!DOCTYPE plist SYSTEM \"x\">" + list("<string>&e;</string>"), "line 2: unknown entity: e"},
        {"<!DOCTYPE plist [<!ENTITY e \"x\">]>" + list("<string>&e;</string>"), "line 1: declarations"},
        {"<!DOCTYPE plist [<!ENTITY e SYSTEM \"/etc/hostname\">]>" + list("<string>&e;</string>"),
         "line 1: declarations"},
        {list("<true/>") + "<plist/>", "line 4: "},
    };
    for (const auto& [xml, message] : cases)
        EXPECT_THAT(errorOf(xml), StartsWith(message)) << xml;
    const std::pair<std::string, std::vector<const char*>> elements[] = {
        {"not an integer: ", {"<integer></integer>"}},
        {"not an integer",
         {"<integer>1 2</integer>", "<integer>9223372036854775808</integer>", "<integer>+-1</integer>"}},
        {"not a real number: 1,5", {"<real>1,5</real>"}},
        {"not a real number", {"<real/>"}},
        {"text inside <true>", {"<true>1</true>"}},
        {"not a date: yesterday", {"<date>yesterday</date>"}},
        {"not a date",
         {"<date>2001-02-29T00:00:00Z</date>", "<date>2001-01-01T24:00:00Z</date>",
          "<date>0000-01-01T00:00:00Z</date>", "<date>2001-01-01T00:00:00</date>"}},
        {"not data", {"<data>QQ=</data>", "<data>Q===</data>", "<data>QQ==QQ==</data>", "<data>Q*==</data>"}},
        {"key without a value: a", {"<dict><key>a</key></dict>"}},
        {"<true> without a key", {"<dict><true/></dict>"}},
        {"key given twice: a", {"<dict><key>a</key><true/><key>a</key><true/></dict>"}},
        {"a key outside a dictionary", {"<array><key>a</key></array>", "<key>a</key>"}},
        {"unexpected text: text", {"<array>text</array>"}},
        {"<b> inside <string>", {"<string><b>x</b></string>"}},
        {"unknown element: set", {"<set/>"}},
        {"unexpected attribute: id", {"<string id=\"1\"/>"}},
        {"",
         {"<string>&#1;</string>", "<string>&#xD800;</string>", "<string>\x01</string>",
          "<string>caf\xE9</string>", "<string>&e;</string>"}},
    };
    for (const auto& [message, all] : elements)
        for (const char* element : all)
            EXPECT_THAT(errorOf(list(element)), StartsWith("line 2: " + message)) << element;
    EXPECT_THAT(errorOf(list("<integer>" + std::string(100'000, 'x') + "</integer>")), HasSubstr("..."));
}

TEST(PropertyListXml, RefusesEveryTruncation) {
    const std::string whole = list("<dict><key>a</key><array><real>1</real></array></dict>");
    const std::size_t complete = whole.size() - 1; // the last line feed is not needed
    for (std::size_t length = 0; length < complete; ++length)
        EXPECT_NE(errorOf(whole.substr(0, length)), "read without an error") << length;
}

std::string times(std::size_t count, std::string_view text) {
    std::string all;
    while (count-- > 0)
        all += text;
    return all;
}

std::string nested(std::size_t depth) { return list(times(depth, "<array>") + times(depth, "</array>")); }

TEST(PropertyListXml, BoundsDepthSizeAndNumber) {
    EXPECT_EQ(errorOf(nested(64)), "read without an error");
    EXPECT_EQ(errorOf(nested(65)), "line 2: nested too deeply");
    EXPECT_EQ(errorOf(nested(1'000'000)), "line 2: nested too deeply");
    EXPECT_EQ(errorOf(list("<array>" + times(2'000'001, "<true/>") + "</array>")), "line 2: too many values");
    EXPECT_EQ(errorOf(std::string(64 * 1024 * 1024 + 1, ' ')), "the file is larger than 64 MiB");
}

TEST(PropertyListXml, WritesWhatItReads) {
    std::u16string awkward;
    for (char16_t c = 0; c < 0x20; ++c)
        awkward += c;
    const PropertyValue values[] = {
        PropertyValue(u""),
        PropertyValue(u" <a> & \"b\" ]]> \r\n\t\u0085\u2028 e\u0301 \U0001F600"),
        PropertyValue(std::numeric_limits<std::int64_t>::max()),
        PropertyValue(0.1),
        PropertyValue(-5e-324),
        PropertyValue(std::numeric_limits<double>::infinity()),
        PropertyValue(PropertyDate{-63113904000.0}),
        PropertyValue(PropertyDate{252423993599.0}),
        PropertyValue(PropertyDate{-1}),
        PropertyValue(PropertyData{{0, 1, 2, 3, 254, 255}}),
        PropertyValue(PropertyData{{7}}),
        PropertyValue(PropertyArray{PropertyDictionary{{"k & <k>", false}}, PropertyArray{}, 2.0}),
    };
    for (const PropertyValue& value : values)
        EXPECT_TRUE(valueOf(PropertyList::toXml(value)) == value) << description(value);
}

TEST(PropertyListXml, IsFreeOfTheLocale) {
    const std::string former = std::setlocale(LC_ALL, nullptr);
    for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8"})
        if (std::setlocale(LC_ALL, name) != nullptr)
            break;
    EXPECT_TRUE(valueOf(PropertyList::toXml(1.5)) == PropertyValue(1.5));
    EXPECT_THAT(PropertyList::toXml(1234567.5), HasSubstr("<real>1234567.5</real>"));
    std::setlocale(LC_ALL, former.c_str());
}

TEST(PropertyListXml, MovesDatesItCannotHoldToTheNearestItCan) {
    const std::pair<double, double> cases[] = {{std::numeric_limits<double>::quiet_NaN(), 0},
                                               {1e300, 252423993599.0},
                                               {-1e300, -63113904000.0},
                                               {-0.5, -1}};
    for (const auto& [date, kept] : cases)
        EXPECT_TRUE(valueOf(PropertyList::toXml(PropertyDate{date})) == PropertyValue(PropertyDate{kept}))
            << date;
}

/// Texts that XML cannot hold travel as data and come back the same.
TEST(PropertyListXml, KeepsEveryText) {
    const std::u16string texts[] = {
        u"plain",
        std::u16string(1, u'\0'),
        u"esc \x1b [0m",
        u"\xFFFE\xFFFF",
        u"caf\xDCE9.jpg",      // an undecodable byte of a file name
        u"\xDCED\xDCA0\xDC80", // the bytes of an encoded surrogate
        u"half \xD83D",        // half an emoji
        u"\xDE00 half",        // the other half
        u"\xDC80\xD83D",       // both kinds
        u"\xDCC3\xDCA9",       // escapes that would form a character
        u"\xDCFE\xDCFF\x01z",  // bytes that look like a byte order mark, odd
        u"\xDCFE\xDCFF"
        u"a\x01", // the same, even
    };
    for (const std::u16string& text : texts) {
        const PropertyValue read = valueOf(PropertyList::toXml(PropertyArray{text}));
        EXPECT_EQ(textOrData(read.asArray()->front()), text);
    }
    EXPECT_EQ(textOrData(PropertyValue(3)), std::nullopt);
    const PropertyValue read = valueOf(PropertyList::toXml(u"caf\xDCE9.jpg"));
    EXPECT_TRUE(read == PropertyValue(PropertyData{{'c', 'a', 'f', 0xE9, '.', 'j', 'p', 'g'}}));
}

/// Lays out a binary list from the bytes of its objects; one byte for each offset and reference.
std::string binary(const std::vector<std::string>& objects, unsigned top = 0) {
    std::string bytes = "bplist00";
    std::string table;
    for (const std::string& object : objects) {
        table += static_cast<char>(bytes.size());
        bytes += object;
    }
    const std::size_t tableStart = bytes.size();
    bytes += table + std::string(6, '\0') + "\x01\x01";
    for (const std::size_t number : {objects.size(), std::size_t{top}, tableStart})
        for (int shift = 56; shift >= 0; shift -= 8)
            bytes += static_cast<char>(number >> shift);
    return bytes;
}

/// An operator between a literal and a text sets off a false warning of some compilers.
std::string join(std::string_view a, std::string_view b) {
    std::string joined(a);
    joined += b;
    return joined;
}

std::string zeros(std::size_t count) { return std::string(count, '\0'); }

TEST(PropertyListBinary, ReadsEachKindOfValue) {
    const std::pair<std::string, PropertyValue> cases[] = {
        {"\x08", false},
        {"\x09", true},
        {"\x10\xFF", 255},
        {"\x11\xFF\xFE", 65534},
        {join("\x13", std::string(8, '\xFF')), -1},
        {join("\x14", std::string(16, '\xFF')), -1},
        {join("\x22\x3F\xC0", zeros(2)), 1.5},
        {join("\x23\xBF\xF8", zeros(6)), -1.5},
        {join("\x33\x40\x24", zeros(6)), PropertyDate{10}},
        {join("\x43", std::string("\x01\x00\xFF", 3)), PropertyData{{1, 0, 255}}},
        {"\x53"
         "abc",
         u"abc"},
        {"\x5F\x10\x10"
         "sixteen letters.",
         u"sixteen letters."},
        {"\xA0", PropertyArray{}},
        {"\xD0", PropertyDictionary{}},
    };
    for (const auto& [object, value] : cases) {
        EXPECT_TRUE(valueOf(binary({object})) == value) << description(value);
    }
}

TEST(PropertyListBinary, ReadsTextsOfUnitsAndContainers) {
    const std::string units("\x63\x00\xE9\xD8\x3D\xDE\x00", 7);
    const std::string bytes = binary({"\xD2\x01\x02\x03\x04",
                                      "\x51"
                                      "a",
                                      "\x51"
                                      "b",
                                      units, "\xA2\x03\x05", "\x09"});
    const std::u16string text = u"\u00E9\U0001F600";
    EXPECT_TRUE(valueOf(bytes) ==
                PropertyValue(PropertyDictionary{{"a", text}, {"b", PropertyArray{text, true}}}));
}

TEST(PropertyListBinary, RefusesDamage) {
    const std::string sound = binary({"\x51"
                                      "a"});
    std::string wrongSize = sound;
    wrongSize[sound.size() - 26] = 9;
    std::string hugeCount = sound;
    hugeCount[sound.size() - 24] = '\x7F';
    std::string hugeTable = sound;
    hugeTable[sound.size() - 8] = '\xFF';
    std::string offsetIntoMark = sound;
    offsetIntoMark[sound.size() - 33] = 2;
    std::string offsetBehind = sound;
    offsetBehind[sound.size() - 33] = '\xFF';
    const std::pair<std::string, const char*> cases[] = {
        {"bplist00", "cut off"},
        {join("bplist00", zeros(31)), "cut off"},
        {join("bplist00", zeros(32)), "trailer"},
        {wrongSize, "trailer"},
        {hugeCount, "trailer"},
        {hugeTable, "trailer"},
        {offsetIntoMark, "leads nowhere"},
        {offsetBehind, "cut off"},
        {binary({"\x09"}, 1), "leads nowhere"},
        {binary({}), "leads nowhere"},
        {binary({zeros(1)}), "an empty value"},
        {binary({"\x80\x01"}), "unknown kind"},
        {binary({join("\x15", zeros(32))}), "too long"},
        {binary({join("\x14", zeros(7)) + join("\x01", zeros(8))}), "out of range"},
        {binary({"\x13"}), "cut off"},
        {binary({"\x23"}), "cut off"},
        {binary({"\x33"}), "cut off"},
        {binary({join("\x21", zeros(2))}), "wrong length"},
        {binary({join("\x33\x7F\xF8", zeros(6))}), "a date"},
        {binary({"\x59"
                 "short"}),
         "cut off"},
        {binary({join("\x5F\x13", std::string(8, '\xFF'))}), "cut off"},
        {binary({join("\x6F\x13\x7F", std::string(7, '\xFF'))}), "cut off"},
        {binary({"\x5F\x09"}), "a length"},
        {binary({"\x51\xE9"}), "not ASCII"},
        {binary({"\xAF\x12\x03\xFF\xFF\xFF"}), "cut off"},
        {binary({"\xA1\x07"}), "leads nowhere"},
        {binary({"\xD1\x01\x01", "\x09"}), "a key of the binary property list is no text"},
        {binary({"\xD1\x01\x01", "\x61\xD8\x3D"}), "no proper text"},
        {binary({"\xD2\x01\x01\x02\x02",
                 "\x51"
                 "a",
                 "\x09"}),
         "given twice: a"},
    };
    for (const auto& [bytes, message] : cases)
        EXPECT_THAT(errorOf(bytes), HasSubstr(message)) << message;
}

TEST(PropertyListBinary, RefusesCyclesAndUnfoldingWithinBounds) {
    EXPECT_THAT(errorOf(binary({std::string("\xA1\x00", 2)})), HasSubstr("holds itself"));
    EXPECT_THAT(errorOf(binary({"\xA1\x01", std::string("\xA2\x00\x00", 3)})), HasSubstr("holds itself"));
    // Each array holds the next one many times over.
    std::vector<std::string> arrays;
    for (char next = 1; next <= 10; ++next)
        arrays.push_back(join("\xAE", std::string(14, next)));
    arrays.emplace_back("\x09");
    EXPECT_THAT(errorOf(binary(arrays)), HasSubstr("unfolds to too many values"));
}

/// One list of all kinds with bytes changed at random: any outcome but a crash will do, and what reads
/// stays within the depth that can be written.
TEST(PropertyListBinary, SurvivesMutations) {
    const std::string sound = binary({"\xD2\x01\x02\x03\x04",
                                      "\x51"
                                      "a",
                                      "\x51"
                                      "b",
                                      std::string("\x62\x00\xE9\x00\x41", 5), "\xA4\x03\x05\x06\x07", "\x09",
                                      join("\x23\xBF\xF8", zeros(6)), join("\x33\x40\x24", zeros(6))});
    std::mt19937 random(1);
    std::size_t read = 0;
    for (int round = 0; round < 20'000; ++round) {
        std::string mutated = sound;
        for (std::size_t changes = 1 + random() % 3; changes > 0; --changes)
            mutated[8 + random() % (mutated.size() - 8)] = static_cast<char>(random());
        const auto result = PropertyList::fromBytes(mutated);
        if (const auto* value = std::get_if<PropertyValue>(&result)) {
            ++read;
            EXPECT_NO_THROW((void)valueOf(PropertyList::toXml(*value))) << description(*value);
        }
    }
    EXPECT_GT(read, 0U);
    EXPECT_LT(read, 20'000U);
}

} // namespace
} // namespace tavrin
