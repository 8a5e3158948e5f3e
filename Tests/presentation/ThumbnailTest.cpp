#include "common/TemporaryFolder.h"
#include "presentation/preview/ThumbnailLoader.h"
#include "support/values/Crc32.h"

#include <gmock/gmock.h>

#include <QtTest>
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
        {write("text.jpg", "no picture"), none},
        {write("cut.png", picture("PNG").left(60)), none},
        {write("large.png", lyingPng("0000ea60")), none},
        {write("larger.png", lyingPng("7fffffff")), none},
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
