#include "common/FailingFileSystem.h"
#include "common/Testing.h"
#include "platform/files/Descriptor.h"
#include "platform/propertylists/PropertyList.h"
#include "platform/propertylists/UserDefaults.h"

#include <clocale>
#include <sys/file.h>

namespace tavrin {
namespace {

std::string list(const std::string& content) {
    return "<plist version=\"1.0\">\n" + content + "\n</plist>\n";
}

PropertyValue valueOf(std::string_view bytes) {
    return std::get<PropertyValue>(PropertyList::fromBytes(bytes));
}

std::string errorOf(std::string_view bytes) {
    const auto result = PropertyList::fromBytes(bytes);
    const auto* error = std::get_if<PropertyListError>(&result);
    return error != nullptr ? error->message : "read without an error";
}

/// "00*8" is a byte eight times.
std::string bytesOf(const std::string& hexadecimal) {
    std::istringstream words(hexadecimal);
    std::string bytes;
    for (std::string word; words >> word;)
        bytes.append(word.size() > 2 ? std::stoul(word.substr(3)) : 1,
                     static_cast<char>(std::stoi(word, nullptr, 16)));
    return bytes;
}

/// Lays out a binary list from the bytes of its objects, apart by slashes; one byte for each offset and
/// reference.
std::string binary(const std::string& objects, unsigned top = 0) {
    std::string bytes = "bplist00";
    std::string table;
    std::istringstream all(objects);
    for (std::string object; std::getline(all, object, '/');) {
        table += static_cast<char>(bytes.size());
        bytes += bytesOf(object);
    }
    const std::size_t tableStart = bytes.size();
    bytes += table + std::string(6, '\0') + "\x01\x01";
    for (const std::size_t number : {table.size(), std::size_t{top}, tableStart})
        for (int shift = 56; shift >= 0; shift -= 8)
            bytes += static_cast<char>(number >> shift);
    return bytes;
}

TEST(PropertyList, ReadsEachKindOfValue) {
    const std::u16string text = u"\u00E9\U0001F600";
    const std::tuple<const char*, const char*, PropertyValue> cases[] = {
        // in XML, in binary
        {"<true/>", "09", true},
        {"<false></false>", "08", false},
        {"<integer>\n +42 </integer>", "10 2A", 42},
        {"<integer>-9223372036854775808</integer>", "13 80 00*7", std::numeric_limits<std::int64_t>::min()},
        {"<integer>255</integer>", "10 FF", 255},
        {"<integer>65534</integer>", "11 FF FE", 65534},
        {"<integer>-1</integer>", "14 FF*16", -1},
        {"<real>1.5e3</real>", "22 44 BB 80 00", 1500.0},
        {"<real>-infinity</real>", "23 FF F0 00*6", -std::numeric_limits<double>::infinity()},
        {"<date>2001-01-01T00:00:10Z</date>", "33 40 24 00*6", PropertyDate{10}},
        {"<date>2000-02-29T23:59:59Z</date>", "33 C1 79 36 B0 10 00*3", PropertyDate{-26438401}},
        {"<data> AP+/\n QQ== </data>", "44 00 FF BF 41", PropertyData{{0x00, 0xFF, 0xBF, 0x41}}},
        {"<data></data>", "40", PropertyData{}},
        {"<string>abc</string>", "53 61 62 63", u"abc"},
        {"<string>aaaaaaaaaaaaaaaa</string>", "5F 10 10 61*16", u"aaaaaaaaaaaaaaaa"},
        {"<string>a &lt;&amp;&#x1F600; b</string>", "", u"a <&\U0001F600 b"},
        {"<string/>", "50", u""},
        {"<string> \n\tkept </string>", "", u" \n\tkept "},
        {"<string><![CDATA[<dict>]]></string>", "", u"<dict>"},
        {"<string>a<!-- no text -->b</string>", "", u"ab"},
        {"<array><true/><array/></array>", "A2 01 02/09/A0", PropertyArray{true, PropertyArray{}}},
        {"<dict><key>b</key><integer>1</integer><key/><dict/></dict>", "D2 01 02 03 04/51 62/50/10 01/D0",
         PropertyDictionary{{"", PropertyDictionary{}}, {"b", 1}}},
        {"", "D2 01 02 03 04/51 61/51 62/63 00 E9 D8 3D DE 00/A2 03 05/09",
         PropertyDictionary{{"a", text}, {"b", PropertyArray{text, true}}}},
    };
    for (const auto& [xml, objects, value] : cases) {
        EXPECT_TRUE(!*xml || valueOf(list(xml)) == value) << xml;
        EXPECT_TRUE(!*objects || valueOf(binary(objects)) == value) << objects;
    }
    EXPECT_TRUE(valueOf("\xEF\xBB\xBF" + list("<string>\xC3\xA9</string>")) == PropertyValue(u"é"));
    EXPECT_TRUE(valueOf("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>" + list("<string>\xE9</string>")) ==
                PropertyValue(u"é"));
}

/// Each case is what is wrapped and, behind a bar, a part of the message.
void expectErrors(const std::function<std::string(const std::string&)>& wrap, const std::string& start,
                  const std::vector<std::string>& cases) {
    for (const std::string& each : cases) {
        const std::size_t bar = each.find('|');
        EXPECT_THAT(errorOf(wrap(each.substr(0, bar))), HasSubstr(start + each.substr(bar + 1))) << each;
    }
}

TEST(PropertyListXml, RefusesWhatIsNoListAndTellsTheLine) {
    const auto whole = [](const std::string& bytes) { return bytes; };
    expectErrors(
        whole, "",
        {"|the property list is empty", "<plist/>|the property list is empty",
         " |line 1: ", "{ a = b; }|line 1: ", "<html/>|line 1: not a property list but: html",
         "<plist><true/></plist>\n<plist/>|line 2: ",
         "<!DOCTYPE plist SYSTEM \"x\">\n<plist><string>&e;</string></plist>|line 2: unknown entity: e",
         "<!DOCTYPE plist [<!ENTITY e \"x\">]><plist><string>&e;</string></plist>|line 1: declarations",
         "<!DOCTYPE plist [<!ENTITY e SYSTEM \"/etc/hostname\">]><plist/>|line 1: declarations"});
    expectErrors(list, "line 3: ",
                 {"<integer>\nabc</integer>|not an integer: \nabc",
                  "<dict><key>a</key>\n<key>b</key><true/></dict>|key without a value: a",
                  "<true/>\n<true/>|more than one value at the top"});
    expectErrors(
        list, "line 2: ",
        {"<integer></integer>|not an integer: ", "<integer>1 2</integer>|not an integer",
         "<integer>9223372036854775808</integer>|not an integer", "<integer>+-1</integer>|not an integer",
         "<real>1,5</real>|not a real number: 1,5", "<real/>|not a real number",
         "<true>1</true>|text inside <true>", "<date>yesterday</date>|not a date: yesterday",
         "<date>2001-02-29T00:00:00Z</date>|not a date", "<date>2001-01-01T24:00:00Z</date>|not a date",
         "<date>0000-01-01T00:00:00Z</date>|not a date", "<date>2001-01-01T00:00:00</date>|not a date",
         "<data>QQ=</data>|not data", "<data>Q===</data>|not data", "<data>QQ==QQ==</data>|not data",
         "<data>Q*==</data>|not data"});
    expectErrors(
        list, "line 2: ",
        {"<dict><key>a</key></dict>|key without a value: a", "<dict><true/></dict>|<true> without a key",
         "<dict><key>a</key><true/><key>a</key><true/></dict>|key given twice: a",
         "<array><key>a</key></array>|a key outside a dictionary", "<key>a</key>|a key outside a dictionary",
         "<array>text</array>|unexpected text: text", "<string><b>x</b></string>|<b> inside <string>",
         "<set/>|unknown element: set", "<string id=\"1\"/>|unexpected attribute: id",
         "<string>&#1;</string>|", "<string>&#xD800;</string>|", "<string>\x01</string>|",
         "<string>caf\xE9</string>|", "<string>&e;</string>|"});
    EXPECT_THAT(errorOf(list("<integer>" + std::string(100'000, 'x') + "</integer>")), HasSubstr("..."));
}

TEST(PropertyListXml, RefusesEveryTruncation) {
    const std::string whole = list("<dict><key>a</key><array><real>1</real></array></dict>");
    const std::size_t complete = whole.size() - 1; // the last line feed is not needed
    for (std::size_t length = 0; length < complete; ++length)
        EXPECT_NE(errorOf(whole.substr(0, length)), "read without an error") << length;
}

std::string times(std::size_t count, const char* text) {
    return fmt::format("{}", fmt::join(std::vector<const char*>(count, text), ""));
}

TEST(PropertyListXml, BoundsDepthSizeAndNumber) {
    for (const std::size_t depth : {64, 65, 1'000'000})
        EXPECT_EQ(errorOf(list(times(depth, "<array>") + times(depth, "</array>"))),
                  depth == 64 ? "read without an error" : "line 2: nested too deeply");
    EXPECT_EQ(errorOf(list("<array>" + times(2'000'001, "<true/>") + "</array>")), "line 2: too many values");
    EXPECT_EQ(errorOf(std::string(64 * 1024 * 1024 + 1, ' ')), "the file is larger than 64 MiB");
}

TEST(PropertyListXml, WritesWhatItReads) {
    const PropertyValue values(
        PropertyArray{u"", u" <a> & \"b\" ]]> \r\n\t\u0085\u2028 e\u0301 \U0001F600",
                      std::numeric_limits<std::int64_t>::max(), 0.1, -5e-324,
                      std::numeric_limits<double>::infinity(), PropertyDate{-63113904000.0},
                      PropertyDate{252423993599.0}, PropertyDate{-1}, PropertyData{{0, 1, 2, 3, 254, 255}},
                      PropertyData{{7}}, PropertyArray{}, 2.0, PropertyDictionary{{"k & <k>", false}}});
    EXPECT_TRUE(valueOf(PropertyList::toXml(values)) == values) << PropertyList::toXml(values);
    // What no list can hold is moved to the nearest that it can.
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    for (const auto& [date, kept] :
         {std::pair(notANumber, 0.0), {1e300, 252423993599.0}, {-1e300, -63113904000.0}, {-0.5, -1}})
        EXPECT_TRUE(valueOf(PropertyList::toXml(PropertyDate{date})) == PropertyValue(PropertyDate{kept}))
            << date;
}

TEST(PropertyListXml, IsFreeOfTheLocale) {
    const std::string former = std::setlocale(LC_ALL, nullptr);
    if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr)
        std::setlocale(LC_ALL, "fr_FR.UTF-8");
    EXPECT_TRUE(valueOf(PropertyList::toXml(1234567.5)) == PropertyValue(1234567.5));
    EXPECT_THAT(PropertyList::toXml(1234567.5), HasSubstr("<real>1234567.5</real>"));
    std::setlocale(LC_ALL, former.c_str());
}

/// Texts that XML cannot hold travel as data and come back the same.
TEST(PropertyListXml, KeepsEveryText) {
    std::u16string awkward;
    for (char16_t c = 0; c < 0x20; ++c)
        awkward += c;
    // Among them undecodable bytes, halves of an emoji, bytes that would form a character and such that look
    // like a byte order mark.
    for (const std::u16string& text : std::initializer_list<std::u16string>{
             awkward, u"plain", u"\xFFFE\xFFFF", u"caf\xDCE9.jpg", u"\xDCED\xDCA0\xDC80", u"half \xD83D",
             u"\xDE00 half", u"\xDC80\xD83D", u"\xDCC3\xDCA9", u"\xDCFE\xDCFF\x01z", u"\xDCFE\xDCFFx\x01"}) {
        const PropertyValue read = valueOf(PropertyList::toXml(PropertyArray{text}));
        EXPECT_EQ(textOrData(read.asArray()->front()), text);
    }
    EXPECT_EQ(textOrData(PropertyValue(3)), std::nullopt);
    EXPECT_THAT(PropertyList::toXml(u"caf\xDCE9"), HasSubstr("<data>Y2Fm6Q==</data>"));
}

TEST(PropertyListBinary, RefusesDamage) {
    const auto patched = [](std::size_t fromTheEnd, char byte) {
        std::string bytes = binary("51 61");
        bytes[bytes.size() - fromTheEnd] = byte;
        return bytes;
    };
    const std::pair<std::string, const char*> cases[] = {
        {"bplist00", "cut off"},
        {"bplist00" + std::string(31, '\0'), "cut off"},
        {"bplist00" + std::string(32, '\0'), "trailer"},
        {patched(26, 9), "trailer"},       // the size of an offset
        {patched(24, '\x7F'), "trailer"},  // the number of objects
        {patched(8, '\xFF'), "trailer"},   // the place of the table
        {patched(33, 2), "leads nowhere"}, // an offset into the mark
        {patched(33, '\xFF'), "cut off"},  // one behind the end
        {binary("09", 1), "leads nowhere"},
        {binary(""), "leads nowhere"},
        // Each array holds the next one many times over.
        {binary(
             "AE 01*14/AE 02*14/AE 03*14/AE 04*14/AE 05*14/AE 06*14/AE 07*14/AE 08*14/AE 09*14/AE 0A*14/09"),
         "unfolds to too many values"},
    };
    for (const auto& [bytes, message] : cases)
        EXPECT_THAT(errorOf(bytes), HasSubstr(message));
    const auto wrap = [](const std::string& objects) { return binary(objects); };
    expectErrors(wrap, "",
                 {"00|an empty value", "80 01|unknown kind", "15 00*32|too long",
                  "14 00*7 01 00*8|out of range", "13|cut off", "23|cut off", "33|cut off",
                  "21 00 00|wrong length", "33 7F F8 00*6|a date", "59 73 68 6F 72 74|cut off",
                  "5F 13 FF*8|cut off", "6F 13 7F FF*7|cut off", "5F 09|a length", "51 E9|not ASCII"});
    expectErrors(wrap, "",
                 {"AF 12 03 FF FF FF|cut off", "A1 07|leads nowhere",
                  "D1 01 01/09|a key of the binary property list is no text",
                  "D1 01 01/61 D8 3D|no proper text", "D2 01 01 02 02/51 61/09|given twice: a",
                  "A1 00|holds itself", "A1 01/A2 00 00|holds itself"});
}

/// One list of all kinds with bytes changed at random: any outcome but a crash will do, and what reads
/// stays within the depth that can be written.
TEST(PropertyListBinary, SurvivesMutations) {
    const std::string sound =
        binary("D2 01 02 03 04/51 61/51 62/62 00 E9 00 41/A4 03 05 06 07/09/23 BF F8 00*6/"
               "33 40 24 00*6");
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

TEST(UserDefaults, LooksThroughTheLayersFromTheTop) {
    UserDefaults defaults;
    EXPECT_EQ(defaults.integerForKey("k"), 0);
    EXPECT_FALSE(defaults.boolForKey("k"));
    defaults.registerDefaults({{"k", 1}, {"other", true}});
    EXPECT_EQ(defaults.integerForKey("k"), 1);
    defaults.setObject("k", 2);
    EXPECT_EQ(defaults.integerForKey("k"), 2);
    defaults.setProcessObject("k", 3);
    defaults.setObject("k", 4);
    EXPECT_EQ(defaults.integerForKey("k"), 3);
    defaults.setObject("other", false);
    EXPECT_FALSE(defaults.boolForKey("other"));
    defaults.removeObject("other");
    EXPECT_TRUE(defaults.boolForKey("other"));
    EXPECT_TRUE(defaults.synchronize());
    defaults.setObject("text", u" 42.5 apples");
    EXPECT_EQ(defaults.integerForKey("text"), 42);
    EXPECT_DOUBLE_EQ(defaults.floatForKey("text"), 42.5);
    defaults.removePersistentDomain();
    EXPECT_EQ(defaults.integerForKey("k"), 3);
    EXPECT_FALSE(defaults.objectForKey("text"));
}

TEST(UserDefaults, ObserversHearOfTheirKeyUntilTheyEnd) {
    UserDefaults defaults;
    std::string heard;
    auto handle = defaults.observe("k", [&] { heard += std::to_string(defaults.integerForKey("k")); });
    std::shared_ptr<void> brief = defaults.observe("k", [&] {
        heard += "b";
        brief.reset(); // an observer may end itself
    });
    defaults.setObject("other", 1);
    defaults.setObject("k", 1);
    defaults.setProcessObject("k", 2);
    defaults.registerDefaults({{"k", 5}});
    defaults.removePersistentDomain();
    EXPECT_EQ(heard, "1b222");
    handle.reset();
    defaults.setObject("k", 3);
    EXPECT_EQ(heard, "1b222");
}

TEST(UserDefaults, CanBeUsedFromManyThreads) {
    UserDefaults defaults;
    std::atomic<int> calls = 0;
    std::vector<std::jthread> threads;
    for (const char* own : {"a", "b", "c", "d"})
        threads.emplace_back([&defaults, &calls, own] {
            for (int i = 0; i < 200; ++i) {
                const auto handle = defaults.observe("shared", [&calls] { ++calls; });
                defaults.setObject("shared", i);
                defaults.setObject(own, i);
                EXPECT_EQ(defaults.integerForKey(own), i);
            }
        });
    threads.clear(); // which waits for them
    EXPECT_GE(calls, 800);
}

class UserDefaultsFile : public testing::Test {
  protected:
    /// Whether the file holds these values and no others.
    void expectStored(const PropertyDictionary& values) const {
        const auto result = PropertyList::read(path);
        const auto* value = std::get_if<PropertyValue>(&result);
        ASSERT_TRUE(value) << std::get<PropertyListError>(result).message;
        EXPECT_TRUE(*value == PropertyValue(values)) << description(*value);
    }

    test::TemporaryFolder folder;
    const std::string path = folder.path("c/defaults.plist");
};

TEST_F(UserDefaultsFile, KeepsThePersistentLayerAlone) {
    {
        UserDefaults defaults(path);
        defaults.registerDefaults({{"registered", 1}});
        defaults.setProcessObject("process", 1);
        defaults.setObject("kept", PropertyDictionary{{"name", std::u16string(u"half \xD83D")}});
        EXPECT_FALSE(folder.kind("c/defaults.plist"));
        EXPECT_TRUE(defaults.synchronize());
    }
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms(0644));
    UserDefaults again(path);
    EXPECT_FALSE(again.objectForKey("registered") || again.objectForKey("process"));
    const auto kept = again.objectForKey("kept");
    ASSERT_TRUE(kept && kept->asDictionary() != nullptr);
    EXPECT_EQ(textOrData(kept->asDictionary()->at("name")), u"half \xD83D");
    again.removePersistentDomain();
    EXPECT_TRUE(again.synchronize());
    expectStored({});
}

TEST_F(UserDefaultsFile, TwoProcessesKeepEachOthersChanges) {
    UserDefaults first(path);
    first.setObject("removed", 1);
    first.setObject("both", 1);
    ASSERT_TRUE(first.synchronize());
    UserDefaults second(path);
    int heard = 0;
    const auto handle = first.observe("from second", [&heard] { ++heard; });
    first.setObject("from first", 1);
    second.setObject("from second", 2);
    second.setObject("both", 2);
    second.removeObject("removed");
    ASSERT_TRUE(second.synchronize());
    ASSERT_TRUE(first.synchronize());
    expectStored({{"both", 2}, {"from first", 1}, {"from second", 2}});
    EXPECT_EQ(first.integerForKey("both"), 2);
    EXPECT_FALSE(first.objectForKey("removed"));
    EXPECT_EQ(heard, 1);
    first.removePersistentDomain();
    first.setObject("new", 1);
    ASSERT_TRUE(first.synchronize());
    expectStored({{"new", 1}});
}

TEST_F(UserDefaultsFile, ADamagedFileIsKeptAsideAndLinksStay) {
    folder.makeFolder("dotfiles");
    folder.link("c/second", "../dotfiles/mine.plist");
    folder.link("c/defaults.plist", "second");
    const auto expectStoring = [this](int number) {
        UserDefaults defaults(path);
        defaults.setObject("new", number);
        EXPECT_TRUE(defaults.synchronize());
        expectStored({{"new", number}});
    };
    expectStoring(0);
    auto expected = folder.tree();
    int number = 0;
    for (const std::string& content :
         std::initializer_list<std::string>{"", "<plist><dict><key>a</key>", "<plist><array/></plist>",
                                            "bplist00", std::string(1000, '\0')}) {
        folder.write("dotfiles/mine.plist", content);
        expectStoring(++number);
        expected[number == 1 ? "dotfiles/mine.plist.damaged"
                             : "dotfiles/mine.plist.damaged-" + std::to_string(number)] = content;
    }
    expectStoring(0);
    EXPECT_EQ(folder.tree(), expected);
}

TEST_F(UserDefaultsFile, AFileDamagedMeanwhileCostsNothing) {
    UserDefaults defaults(path);
    defaults.setObject("old", 1);
    ASSERT_TRUE(defaults.synchronize());
    folder.write("c/defaults.plist", "damaged");
    defaults.setObject("new", 2);
    EXPECT_TRUE(defaults.synchronize());
    expectStored({{"new", 2}, {"old", 1}});
    EXPECT_EQ(folder.read("c/defaults.plist.damaged"), "damaged");
}

TEST_F(UserDefaultsFile, WhatCannotBeReadOrMovedAsideIsNeverOverwritten) {
    folder.write("c/defaults.plist", "damaged");
    for (const auto call : {test::FileCall::read, test::FileCall::rename}) {
        test::FailingFileSystem failing;
        failing.failKind(call, EIO);
        UserDefaults defaults(path);
        defaults.setObject("new", 1);
        EXPECT_FALSE(defaults.synchronize());
        EXPECT_EQ(folder.read("c/defaults.plist"), "damaged");
        EXPECT_EQ(defaults.integerForKey("new"), 1);
    }
}

/// Whichever call fails, the file is whole, in its old or its new state, and the next attempt succeeds.
TEST_F(UserDefaultsFile, SurvivesEachFailingCall) {
    bool succeeded = false;
    for (std::size_t number = 1; !succeeded; ++number) {
        UserDefaults defaults(path);
        defaults.setObject("k", 1);
        ASSERT_TRUE(defaults.synchronize());
        test::FailingFileSystem failing;
        failing.failCall(number, ENOSPC);
        defaults.setObject("k", 2);
        succeeded = defaults.synchronize();
        EXPECT_EQ(succeeded, failing.failureCount() == 0) << number;
        EXPECT_TRUE(number > 2 || !succeeded);
        failing.reset();
        expectStored({{"k", succeeded ? 2 : 1}});
        EXPECT_EQ(defaults.integerForKey("k"), 2);
        EXPECT_TRUE(defaults.synchronize());
        expectStored({{"k", 2}});
    }
}

TEST_F(UserDefaultsFile, GivesUpWhenAnotherHoldsTheLock) {
    UserDefaults defaults(path, std::chrono::milliseconds(1));
    defaults.setObject("k", 1);
    ASSERT_TRUE(defaults.synchronize());
    Descriptor other(::open((path + ".lock").c_str(), O_RDWR | O_CLOEXEC));
    ASSERT_EQ(::flock(other.get(), LOCK_EX), 0);
    defaults.setObject("k", 2);
    EXPECT_FALSE(defaults.synchronize());
    other.reset();
    EXPECT_TRUE(defaults.synchronize());
    expectStored({{"k", 2}});
}

} // namespace
} // namespace tavrin
