#include "common/LogRecorder.h"
#include "support/application/DebugLog.h"
#include "support/text/KQStringUtilities.h"
#include "support/text/PathParts.h"
#include "support/values/PropertyValue.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tavrin {
namespace {

TEST(PropertyValue, LooseConversions) {
    const std::int32_t least = std::numeric_limits<std::int32_t>::min();
    const std::int32_t most = std::numeric_limits<std::int32_t>::max();
    const struct {
        PropertyValue value;
        std::int32_t integer;
        bool truth;
        std::u16string text;
    } cases[] = {{true, 1, true, u"1"},
                 {false, 0, false, u"0"},
                 {42, 42, true, u"42"},
                 {std::int64_t{-5'000'000'000}, least, true, u"-5000000000"},
                 {std::int64_t{5'000'000'000}, most, true, u"5000000000"},
                 {0, 0, false, u"0"},
                 {-2.9, -2, true, u"-2.9"},
                 {0.1, 0, true, u"0.1"},
                 {3.0, 3, true, u"3"},
                 {0.0, 0, false, u"0"},
                 {1e300, most, true, u"1e+300"},
                 {-INFINITY, least, true, u"-inf"},
                 {std::nan(""), 0, true, u"nan"},
                 {u" 12 apes", 12, true, u" 12 apes"},
                 {u"0", 0, false, u"0"},
                 {u"", 0, false, u""},
                 {u" \n", 0, false, u" \n"},
                 {u" yes", 0, true, u" yes"},
                 {u"Tern", 0, true, u"Tern"},
                 {u"no", 0, false, u"no"},
                 {PropertyDate{5}, 0, false, u""},
                 {PropertyData{{1}}, 0, false, u""},
                 {PropertyArray{1}, 0, false, u""},
                 {PropertyDictionary{{"a", 1}}, 0, false, u""}};
    for (const auto& [value, integer, truth, text] : cases) {
        EXPECT_EQ(integer, intValue(value)) << description(value);
        EXPECT_EQ(truth, boolValue(value)) << description(value);
        EXPECT_EQ(text, textValue(value)) << description(value);
    }
}

TEST(PropertyValue, KindsStayApart) {
    EXPECT_FALSE(PropertyValue(1) == PropertyValue(true));
    EXPECT_FALSE(PropertyValue(1) == PropertyValue(1.0));
    EXPECT_TRUE(PropertyValue(PropertyArray{1, u"x"}) == PropertyValue(PropertyArray{1, u"x"}));
    EXPECT_FALSE(PropertyValue(PropertyArray{1, u"x"}) == PropertyValue(PropertyArray{1, u"y"}));
    EXPECT_TRUE(PropertyValue(true).isNumber());
    EXPECT_FALSE(PropertyValue(u"1").isNumber());
    EXPECT_EQ(nullptr, PropertyValue(true).asInteger());
}

TEST(PropertyValue, IsFoundByKeyAndDescribed) {
    const PropertyDictionary dictionary = {
        {"b", PropertyArray{1, true, 0.5}},
        {"a", u"caf\u00E9 \"x\"\n\xDCE9"},
        {"c", PropertyDictionary{{"date", PropertyDate{1.5}}, {"bytes", PropertyData{{1, 2}}}}},
    };
    ASSERT_NE(nullptr, find(dictionary, "b"));
    EXPECT_EQ(3u, find(dictionary, "b")->asArray()->size());
    EXPECT_EQ(nullptr, find(dictionary, "d"));
    EXPECT_EQ("{\"a\": \"caf\xC3\xA9 \\\"x\\\"\\x0a\xE9\", \"b\": [1, true, 0.5], "
              "\"c\": {\"bytes\": 2 bytes, \"date\": date 1.5}}",
              description(dictionary));
}

TEST(DebugLog, WritesOnlyWhileOnAndHeard) {
    debugLog("before any sink");
    test::LogRecorder lines;
    setDebugLogIsOn(false);
    debugLog("off {}", 1);
    setDebugLogIsOn(true);
    EXPECT_TRUE(debugLogIsOn());
    debugLog("on {} {}", 2, "x");
    EXPECT_EQ(&lines, setDebugLogSink(nullptr));
    EXPECT_FALSE(debugLogIsOn());
    debugLog("unheard");
    setDebugLogSink(&lines);
    setDebugLogIsOn(false);
    debugLog("off again");
    EXPECT_EQ(std::vector<std::string>{"on 2 x"}, lines.lines());
}

TEST(PathParts, CutPathsAndJoinThemAgain) {
    const struct {
        std::string_view path, prefix, folder, name, stem, extension;
    } cases[] = {
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
    const std::u16string zeros(32, u'0');
    const auto block = [&](std::u16string_view digits, std::u16string_view before = u"",
                           std::u16string_view behind = u"") {
        std::u16string result(before);
        result.append(zeros, digits.size()).append(digits).append(behind);
        return result;
    };
    const std::pair<std::u16string, std::u16string> cases[] = {
        {u"", u""},
        {u"name", u"name"},
        {u"a1", block(u"1", u"a")},
        {u"12-0034x", block(u"12", u"", u"-") + block(u"34", u"", u"x")},
        {u"-5", block(u"5", u"-")},
        {u"000", zeros},
        {u"2147483647", block(u"2147483647")},
        {u"2147483648", block(u"2147483647")},
        {u"20240607123456789 b", block(u"2147483647", u"", u" b")},
        {u"٣", u"٣"},
    };
    for (const auto& [text, expanded] : cases)
        EXPECT_EQ(expanded, KQStringUtilities::expandNumberBlocks(text));
    const auto key = [](const char16_t* text) { return KQStringUtilities::expandNumberBlocks(text); };
    EXPECT_LT(key(u"file2b30"), key(u"file12b7"));
    EXPECT_LT(key(u"file12b7"), key(u"file100"));
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

} // namespace
} // namespace tavrin
