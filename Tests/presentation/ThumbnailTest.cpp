#include "common/TemporaryFolder.h"
#include "presentation/preview/ThumbnailLoader.h"
#include "support/values/Crc32.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QTest>
#include <sys/stat.h>

namespace tavrin::test {

namespace {

QByteArray picture(const char* format, int width = 400, int height = 200) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::red);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    EXPECT_TRUE(image.save(&buffer, format));
    return bytes;
}

QByteArray bigEndian(quint32 number) {
    QByteArray bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes.append(static_cast<char>(number >> shift));
    return bytes;
}

QByteArray lyingPng(quint32 side) {
    QByteArray bytes = picture("PNG");
    bytes.replace(16, 8, bigEndian(side) + bigEndian(side));
    bytes.replace(29, 4, bigEndian(crc32(std::string_view(bytes.constData() + 12, 17))));
    return bytes;
}

QByteArray lyingBmp() {
    QByteArray bytes = picture("BMP");
    return bytes.replace(18, 8, QByteArray::fromHex("60ea000060ea0000")); // 60000 each, little-endian
}

TEST(Thumbnail, IsReadFromPlainPicturesAlone) {
    const TemporaryFolder folder;
    const auto write = [&](const char* name, const QByteArray& bytes) {
        return folder.write(name, bytes.toStdString());
    };
    ASSERT_EQ(::mkfifo(folder.path("fifo.jpg").c_str(), 0600), 0);
    folder.link("device.jpg", "/dev/zero");
    folder.makeFolder("folder.jpg");
    const QByteArray drawing = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"9\" height=\"9\">"
                               "<rect width=\"9\" height=\"9\"/></svg>";
    const QSize none(0, 0);
    const std::pair<std::string, QSize> cases[] = {
        {write("good.png", picture("PNG")), {28, 14}},
        {write("good.jpg", picture("JPG")), {28, 14}},
        {write("narrow.jpg", picture("JPG", 1, 4000)), {1, 28}},
        {write("other name.jpg", picture("PNG")), {28, 14}},
        {write("empty.jpg", ""), none},
        {write("text.jpg", "no picture"), none},
        {write("cut.png", picture("PNG").left(60)), none},
        {write("large.png", lyingPng(60000)), none},
        {write("larger.png", lyingPng(0x7FFFFFFF)), none},
        {write("large.bmp", lyingBmp()), none},
        {write("large.gif",
               QByteArray("GIF89a\xFF\xFF\xFF\xFF\x80\0\0\0\0\0\0\0\0,\0\0\0\0\xFF\xFF\xFF\xFF\0\2", 31)),
         none},
        {write("drawing.jpg", drawing), none},
        {folder.path("fifo.jpg"), none},
        {folder.path("device.jpg"), none},
        {folder.path("folder.jpg"), none},
        {folder.path("nothing.jpg"), none}};
    const ThumbnailLoader loader; // sets the limits
    for (const auto& [path, size] : cases) {
        const QImage image = ThumbnailLoader::read(path, 28);
        EXPECT_EQ(image.width(), size.width()) << path;
        EXPECT_EQ(image.height(), size.height()) << path;
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
