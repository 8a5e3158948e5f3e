#include "platform/propertylists/PropertyList.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <clocale>
#include <limits>

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

struct ReadCase {
    const char* xml;
    PropertyValue value;
};

TEST(PropertyListXml, ReadsEachKindOfValue) {
    const ReadCase cases[] = {
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
    for (const ReadCase& c : cases)
        EXPECT_EQ(description(valueOf(list(c.xml))), description(c.value)) << c.xml;
    for (const ReadCase& c : cases)
        EXPECT_TRUE(valueOf(list(c.xml)) == c.value) << c.xml;
}

TEST(PropertyListXml, ReadsOtherEncodingsAndMarks) {
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
        {list("<integer></integer>"), "line 2: not an integer: "},
        {list("<integer>1 2</integer>"), "line 2: not an integer"},
        {list("<integer>9223372036854775808</integer>"), "line 2: not an integer"},
        {list("<integer>+-1</integer>"), "line 2: not an integer"},
        {list("<real>1,5</real>"), "line 2: not a real number: 1,5"},
        {list("<real/>"), "line 2: not a real number"},
        {list("<true>1</true>"), "line 2: text inside <true>"},
        {list("<date>yesterday</date>"), "line 2: not a date: yesterday"},
        {list("<date>2001-02-29T00:00:00Z</date>"), "line 2: not a date"},
        {list("<date>2001-01-01T24:00:00Z</date>"), "line 2: not a date"},
        {list("<date>0000-01-01T00:00:00Z</date>"), "line 2: not a date"},
        {list("<date>2001-01-01T00:00:00</date>"), "line 2: not a date"},
        {list("<data>QQ=</data>"), "line 2: not data"},
        {list("<data>Q===</data>"), "line 2: not data"},
        {list("<data>QQ==QQ==</data>"), "line 2: not data"},
        {list("<data>Q*==</data>"), "line 2: not data"},
        {list("<dict><key>a</key></dict>"), "line 2: key without a value: a"},
        {list("<dict><key>a</key>\n<key>b</key><true/></dict>"), "line 3: key without a value: a"},
        {list("<dict><true/></dict>"), "line 2: <true> without a key"},
        {list("<dict><key>a</key><true/><key>a</key><true/></dict>"), "line 2: key given twice: a"},
        {list("<array><key>a</key></array>"), "line 2: a key outside a dictionary"},
        {list("<key>a</key>"), "line 2: a key outside a dictionary"},
        {list("<true/>\n<true/>"), "line 3: more than one value at the top"},
        {list("<array>text</array>"), "line 2: unexpected text: text"},
        {list("<string><b>x</b></string>"), "line 2: <b> inside <string>"},
        {list("<set/>"), "line 2: unknown element: set"},
        {list("<string id=\"1\"/>"), "line 2: unexpected attribute: id"},
        {list("<string>&#1;</string>"), "line 2: "},
        {list("<string>&#xD800;</string>"), "line 2: "},
        {list("<string>\x01</string>"), "line 2: "},
        {list("<string>caf\xE9</string>"), "line 2: "},
        {list("<string>&e;</string>"), "line 2: "},
        {"<!DOCTYPE plist SYSTEM \"x\">" + list("<string>&e;</string>"), "line 2: unknown entity: e"},
        {"<!DOCTYPE plist [<!ENTITY e \"x\">]>" + list("<string>&e;</string>"), "line 1: declarations"},
        {"<!DOCTYPE plist [<!ENTITY e SYSTEM \"/etc/hostname\">]>" + list("<string>&e;</string>"),
         "line 1: declarations"},
        {list("<true/>") + "<plist/>", "line 4: "},
    };
    for (const auto& [xml, message] : cases)
        EXPECT_THAT(errorOf(xml), StartsWith(message)) << xml;
    EXPECT_THAT(errorOf(list("<integer>" + std::string(100'000, 'x') + "</integer>")), HasSubstr("..."));
}

TEST(PropertyListXml, RefusesEveryTruncation) {
    const std::string whole = list("<dict><key>a</key><array><real>1</real></array></dict>");
    const std::size_t complete = whole.size() - 1; // the last line feed is not needed
    for (std::size_t length = 0; length < complete; ++length)
        EXPECT_NE(errorOf(whole.substr(0, length)), "read without an error") << length;
}

std::string nested(std::size_t depth) {
    std::string xml;
    for (std::size_t i = 0; i < depth; ++i)
        xml += "<array>";
    for (std::size_t i = 0; i < depth; ++i)
        xml += "</array>";
    return list(xml);
}

TEST(PropertyListXml, BoundsDepthSizeAndNumber) {
    EXPECT_EQ(errorOf(nested(64)), "read without an error");
    EXPECT_EQ(errorOf(nested(65)), "line 2: nested too deeply");
    EXPECT_EQ(errorOf(nested(1'000'000)), "line 2: nested too deeply");
    std::string many;
    for (int i = 0; i < 2'000'001; ++i)
        many += "<true/>";
    EXPECT_EQ(errorOf(list("<array>" + many + "</array>")), "line 2: too many values");
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
    const double none = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(valueOf(PropertyList::toXml(PropertyDate{none})) == PropertyValue(PropertyDate{0}));
    EXPECT_TRUE(valueOf(PropertyList::toXml(PropertyDate{1e300})) ==
                PropertyValue(PropertyDate{252423993599.0}));
    EXPECT_TRUE(valueOf(PropertyList::toXml(PropertyDate{-1e300})) ==
                PropertyValue(PropertyDate{-63113904000.0}));
    EXPECT_TRUE(valueOf(PropertyList::toXml(PropertyDate{-0.5})) == PropertyValue(PropertyDate{-1}));
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
}

TEST(PropertyListXml, WritesFileNameBytesAsTheyAre) {
    const PropertyValue read = valueOf(PropertyList::toXml(u"caf\xDCE9.jpg"));
    EXPECT_TRUE(read == PropertyValue(PropertyData{{'c', 'a', 'f', 0xE9, '.', 'j', 'p', 'g'}}));
}

} // namespace
} // namespace tavrin
