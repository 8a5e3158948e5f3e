#include "support/text/Glob.h"

#include "common/Testing.h"

#include <ctime>

namespace tavrin::test {
namespace {

bool fits(std::string_view pattern, std::string_view text) {
    std::u32string characters;
    Glob::decode(text, characters);
    return Glob(pattern).matches(characters);
}

TEST(Glob, FitsAsAWhole) {
    struct Case {
        std::string pattern;
        std::vector<std::string> fitting, others;
    };
    const Case cases[] = {
        {"*.jpg", {".jpg", "a.jpg", ".a.jpg", "a.jpg.jpg"}, {"a.JPG", "a.jpg~", "a/b.jpg"}},
        {"?\xC3\xA9?",
         {"\xC3\xA9\xC3\xA9\xC3\xA9", "\xF0\x9F\x98\x80\xC3\xA9\xFF"},
         {"\xC3\xA9", "a\xC3\xA9"}},
        {"[a-c!]x[!0-9]", {"axb", "!x.", "cx\xFF"}, {"dxb", "ax1", "ax", "ax/"}},
        {"[]-]*[^]]", {"]a", "-x]y"}, {"]", "a]", "]]"}},
        {"[[:digit:][:upper:]_]", {"7", "\xC3\x89", "_"}, {"a", ":", "]"}},
        {"\xFF*[\xFE]", {"\xFF\xFE", "\xFFx\xFE"}, {"\xFF", "\xC3\xBF\xFE"}},
        {"{a,b{1,2},}.{txt,}", {"a.txt", "b2.", ".txt", "."}, {"b.txt", "a", "ab1.txt"}},
        {"\\*\\{[\\]]", {"*{]"}, {"a{]", "*{\\"}},
        {"a,b}", {"a,b}"}, {"a"}},
        {"a/*/c", {"a/b/c", "a//c"}, {"a/c", "a/b/b/c"}},
        {"**/x", {"x", "a/x", "a/b/x"}, {"ax", "a/bx"}},
        {"a/**/b*", {"a/b", "a/bc", "a/x/y/b"}, {"ab", "a/x/cb", "a/b/c"}},
        {"a/**", {"a/b", "a/b/c"}, {"a", "b/a/c"}},
        {"{**/,x}y*z", {"yz", "a/b/yaz", "xyz"}, {"ayz", "a/y/z"}},
        {"a**b", {"ab", "a/x/b"}, {"a/x"}},
        {"/a", {"a"}, {"b/a"}},
    };
    for (const Case& test : cases) {
        for (const std::string& text : test.fitting)
            EXPECT_TRUE(fits(test.pattern, text)) << test.pattern << "   " << text;
        for (const std::string& text : test.others)
            EXPECT_FALSE(fits(test.pattern, text)) << test.pattern << "   " << text;
    }
}

TEST(Glob, SaysWhatItIsFor) {
    EXPECT_FALSE(Glob("a[/]b/").isForPaths());
    EXPECT_TRUE(Glob("a[/]b/").isForFolders());
    EXPECT_TRUE(Glob("/a").isForPaths());
    EXPECT_TRUE(Glob("{a/b,c}").isForPaths());
    EXPECT_FALSE(Glob("{a/b,c}").isForFolders());
}

TEST(Glob, WhatCannotBeUnderstoodIsRefused) {
    for (const std::string& pattern :
         {std::string(), std::string("a["), std::string("[]"), std::string("[z-a]"), std::string("[[:x:]]"),
          std::string("{a,b"), std::string("a\\"), std::string(200, '{') + std::string(200, '}'),
          std::string(30000, 'a')})
        EXPECT_THROW(Glob{pattern}, GlobError) << pattern.substr(0, 20);
}

/// Each would take an age with backtracking, or with a copy for each choice.
TEST(Glob, NoPatternTakesLong) {
    std::string stars, braces, choices = "{";
    for (int i = 0; i < 3000; ++i) {
        stars += "*a";
        braces += "{a,aa}";
        choices += i < 2800 ? "*a*a*b," : "";
    }
    const std::string name(255, 'a');
    const std::string path(4000, 'a');
    const std::clock_t start = std::clock(); // of the processor: other programs take their time too
    EXPECT_TRUE(fits(stars, path));
    EXPECT_FALSE(fits(stars + "b", path));
    EXPECT_FALSE(fits("**" + stars.substr(0, 200) + "b", path));
    EXPECT_TRUE(fits(braces, path));
    EXPECT_FALSE(fits(choices + "}", name));
    EXPECT_LT((std::clock() - start) / CLOCKS_PER_SEC, 10);
}

} // namespace
} // namespace tavrin::test
