#include "platform/propertylists/PropertyList.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <random>

namespace tavrin {
namespace {

using testing::HasSubstr;

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

std::string errorOf(std::string_view bytes) {
    const auto result = PropertyList::fromBytes(bytes);
    const auto* error = std::get_if<PropertyListError>(&result);
    return error != nullptr ? error->message : "read without an error";
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
        const auto result = PropertyList::fromBytes(binary({object}));
        ASSERT_TRUE(std::holds_alternative<PropertyValue>(result))
            << description(value) << errorOf(binary({object}));
        EXPECT_TRUE(std::get<PropertyValue>(result) == value) << description(value);
    }
}

TEST(PropertyListBinary, ReadsTextsOfUnitsAndContainers) {
    const std::string units("\x63\x00\xE9\xD8\x3D\xDE\x00", 7);
    const std::string list = binary({"\xD2\x01\x02\x03\x04",
                                     "\x51"
                                     "a",
                                     "\x51"
                                     "b",
                                     units, "\xA2\x03\x05", "\x09"});
    const auto result = PropertyList::fromBytes(list);
    ASSERT_TRUE(std::holds_alternative<PropertyValue>(result)) << errorOf(list);
    const std::u16string text = u"\u00E9\U0001F600";
    EXPECT_TRUE(std::get<PropertyValue>(result) ==
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
            const auto again = PropertyList::fromBytes(PropertyList::toXml(*value));
            EXPECT_TRUE(std::holds_alternative<PropertyValue>(again)) << description(*value);
        }
    }
    EXPECT_GT(read, 0U);
    EXPECT_LT(read, 20'000U);
}

} // namespace
} // namespace tavrin
