#include "presentation/preview/NameDifference.h"

#include "presentation/preview/ShownName.h"

#include <gtest/gtest.h>

namespace tavrin::test {

namespace {

/// The name with each span between brackets.
std::u16string marked(std::u16string_view name, const std::vector<NameDifference::Span>& spans) {
    std::u16string result;
    std::size_t place = 0;
    for (const auto& span : spans) {
        result.append(name.substr(place, span.start - place));
        result.append(u"[").append(name.substr(span.start, span.length)).append(u"]");
        place = span.start + span.length;
    }
    return result.append(name.substr(place));
}

TEST(NameDifference, TellsWhatWentAndWhatCame) {
    const std::u16string cases[][4] = {
        {u"IMG_4021.JPG", u"Lofoten 4021.jpg", u"[IMG_]4021.[JPG]", u"[Lofoten ]4021.[jpg]"},
        {u"a.txt", u"a.txt", u"a.txt", u"a.txt"},
        {u"report.txt", u"2024 report.txt", u"report.txt", u"[2024 ]report.txt"},
        {u"photo (2).jpg", u"photo.jpg", u"photo[ (2)].jpg", u"photo.jpg"},
        // Nothing of the name itself stays: no colours at all.
        {u"abc.txt", u"xyz.txt", u"abc.txt", u"xyz.txt"},
        // Half a word or half a number tells nothing.
        {u"holiday 1.txt", u"hotel 1.txt", u"[holiday] 1.txt", u"[hotel] 1.txt"},
        {u"x 1234.txt", u"x 1999.txt", u"x [1234].txt", u"x [1999].txt"},
        {u"x 1234.txt", u"x 1299.txt", u"x 12[34].txt", u"x 12[99].txt"},
        // A composed character is never cut.
        {u"cafe\u0301 a", u"cafe a", u"caf[e\u0301] a", u"caf[e] a"},
        {u"", u"a", u"", u"a"},
    };
    for (const auto& [before, after, removed, added] : cases) {
        const NameDifference difference = NameDifference::between(before, after);
        EXPECT_EQ(marked(before, difference.removed), removed);
        EXPECT_EQ(marked(after, difference.added), added);
    }
    const std::u16string endless(3000, u'a');
    EXPECT_EQ(NameDifference::between(endless + u"b c", endless + u"d c").added.size(), 1U);
}

TEST(NameDifference, ShowsNamesSafely) {
    EXPECT_EQ(ShownName::of(u"a\u202Eb\nc", false), QString::fromUtf16(u"a\u2023b\u2023c"));
    EXPECT_EQ(ShownName::of(u"a b\t\u0001", true), QString::fromUtf16(u"a\u00B7b\u2192\u2023"));
    const std::u16string bytes{u'a', 0xDCE9, u'b'};
    EXPECT_EQ(ShownName::of(bytes, false), QString::fromUtf16(u"a\uFFFDb"));
    EXPECT_EQ(ShownName::bytesNote(bytes), "Bytes that are not UTF-8: E9");
    EXPECT_EQ(ShownName::of(u"\U0001F600", false), QString::fromUtf16(u"\U0001F600"));
}

TEST(NameDifference, KnowsNamesThatNoFileCanHave) {
    EXPECT_STREQ(problemOfName(u""), "the name would be empty");
    EXPECT_STREQ(problemOfName(u".."), "“.” and “..” cannot be names");
    EXPECT_EQ(problemOfName(u"..."), nullptr);
    EXPECT_EQ(problemOfName(std::u16string(255, u'a')), nullptr);
    EXPECT_STREQ(problemOfName(std::u16string(256, u'a')), "longer than 255 bytes");
    EXPECT_STREQ(problemOfName(std::u16string(86, u'\u4E00')), "longer than 255 bytes");
}

} // namespace

} // namespace tavrin::test
