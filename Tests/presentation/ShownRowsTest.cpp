#include "common/Testing.h"
#include "presentation/preview/NameDifference.h"
#include "presentation/preview/ShownName.h"
#include "presentation/preview/ThumbnailLoader.h"
#include "support/values/Crc32.h"

#include <QtTest>

// What the rows of the list show.

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
        // Nothing of the name itself stays: no colours at all.
        {u"abc.txt", u"xyz.txt", u"abc.txt", u"xyz.txt"},
        // Half a word or half a number tells nothing.
        {u"holiday 1.txt", u"hotel 1.txt", u"[holiday] 1.txt", u"[hotel] 1.txt"},
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

QByteArray picture(const char* format, int width = 400, int height = 200) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::red);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    EXPECT_TRUE(image.save(&buffer, format));
    return bytes;
}

/// A picture of so many pixels by its header, that has far fewer.
QByteArray lyingPng(const char* side) {
    QByteArray bytes = picture("PNG");
    bytes.replace(16, 8, QByteArray::fromHex(side).repeated(2));
    const quint32 checksum = qToBigEndian(crc32(std::string_view(bytes.constData() + 12, 17)));
    return bytes.replace(29, 4, QByteArray::fromRawData(reinterpret_cast<const char*>(&checksum), 4));
}

TEST(Thumbnail, IsReadFromPlainPicturesAlone) {
    const TemporaryFolder folder;
    const auto write = [&](const char* name, const QByteArray& bytes) {
        return folder.write(name, bytes.toStdString());
    };
    ASSERT_EQ(::mkfifo(folder.path("fifo.jpg").c_str(), 0600), 0);
    const QSize none(0, 0);
    const std::pair<std::string, QSize> cases[] = {
        {write("good.png", picture("PNG")), {28, 14}},
        {write("good.jpg", picture("JPG")), {28, 14}},
        {write("narrow.jpg", picture("JPG", 1, 4000)), {1, 28}},
        {write("other name.jpg", picture("PNG")), {28, 14}},
        {write("empty.jpg", ""), none},
        {write("cut.png", picture("PNG").left(60)), none},
        {write("large.png", lyingPng("0000ea60")), none},
        {write("large.bmp", picture("BMP").replace(18, 8, QByteArray::fromHex("60ea000060ea0000"))), none},
        {write("large.gif",
               "GIF89a" + QByteArray::fromHex("ffffffff8000000000000000002c00000000ffffffff000200")),
         none},
        {write("drawing.jpg", R"(<svg xmlns="http://www.w3.org/2000/svg" width="9" height="9">
                                 <rect width="9" height="9"/></svg>)"),
         none},
        {folder.path("fifo.jpg"), none},
        {folder.link("device.jpg", "/dev/zero"), none},
        {folder.makeFolder("folder.jpg"), none},
        {folder.path("nothing.jpg"), none}};
    const ThumbnailLoader loader; // sets the limits
    for (const auto& [path, size] : cases) {
        const QImage image = ThumbnailLoader::read(path, 28);
        EXPECT_TRUE(image.size() == size) << path << ": " << image.width() << " x " << image.height();
    }
}

TEST(Thumbnail, IsNotReadWhileTheListScrolls) {
    const TemporaryFolder folder;
    PreviewList::Row row;
    row.id = 7;
    row.fullPath = folder.write("a.jpg", picture("JPG").toStdString());
    std::vector<RowId> changed;
    ThumbnailLoader loader;
    QObject::connect(&loader, &ThumbnailLoader::changed, [&](RowId id) { changed.push_back(id); });
    loader.setPaused(true);
    EXPECT_EQ(loader.imageFor(row, true).typeId(), QMetaType::QIcon);
    EXPECT_FALSE(loader.isReading());
    loader.setPaused(false);
    static_cast<void>(loader.imageFor(row, true));
    EXPECT_TRUE(loader.isReading());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !changed.empty(); }, 10000));
    EXPECT_EQ(changed, std::vector<RowId>{7});
    EXPECT_EQ(loader.imageFor(row, true).typeId(), QMetaType::QImage);
    // What was asked for before the scrolling is dropped, and comes when it is asked for again.
    loader.clear();
    static_cast<void>(loader.imageFor(row, true));
    loader.setPaused(true);
    EXPECT_FALSE(loader.isReading());
    loader.setPaused(false);
    static_cast<void>(loader.imageFor(row, true));
    EXPECT_TRUE(QTest::qWaitFor([&] { return changed.size() == 2; }, 10000));
    EXPECT_FALSE(loader.isReading());
}

} // namespace

} // namespace tavrin::test
