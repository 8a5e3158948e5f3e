#include "presentation/preview/ThumbnailLoader.h"

#include "platform/metadata/ExifHelper.h"
#include "presentation/GlyphIcon.h"
#include "support/text/PathParts.h"

#include <QCryptographicHash>
#include <QFile>
#include <QHash>
#include <QImageReader>
#include <QMimeDatabase>
#include <QStandardPaths>
#include <algorithm>
#include <array>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace tavrin {

namespace {

QIcon lookedUp(const QString& extension, bool isFolder) {
    if (isFolder)
        return QIcon::fromTheme("folder", GlyphIcon::of(Glyph::folderItem, QPalette::PlaceholderText));
    const QMimeDatabase types;
    const QMimeType type = types.mimeTypeForFile("x." + extension, QMimeDatabase::MatchExtension);
    const QIcon generic =
        QIcon::fromTheme(type.genericIconName(), GlyphIcon::of(Glyph::fileItem, QPalette::PlaceholderText));
    return QIcon::fromTheme(type.iconName(), generic);
}

} // namespace

QIcon TypeIcons::iconFor(const std::string& path, bool isFolder) {
    static QHash<QString, QIcon> known;
    const std::string_view ending = extensionOf(path);
    const QString extension =
        isFolder ? QString("/") : QString::fromUtf8(ending.data(), std::ssize(ending)).toLower();
    auto found = known.find(extension);
    if (found == known.end())
        found = known.insert(extension, lookedUp(extension, isFolder));
    return *found;
}

namespace {

constexpr int keptBytes = 64 * 1024 * 1024;
constexpr int entryBytes = 100; ///< what an entry takes beside its picture and its path
constexpr off_t largestFile = 512 * 1024 * 1024;
constexpr int decodingMegabytes = 128; ///< for one picture in full

/// Pictures made of dots alone: drawings may name other files, which would then be opened.
const std::array<const char*, 14> formats{"jpeg", "jpg", "png", "gif", "bmp",  "webp", "tiff",
                                          "tif",  "tga", "ico", "jp2", "heic", "heif", "avif"};

/// Opens what is a plain file, and nothing that could block.
bool openPlainFile(const std::string& path, QFile& file) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0)
        return false;
    struct stat status {};
    if (::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_size <= largestFile &&
        file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle))
        return true;
    ::close(descriptor);
    return false;
}

/// The picture, no larger than the limit where the format lets it be read so; null where it is none.
QImage readPicture(const std::string& path, std::optional<int> limit) {
    QFile file;
    if (!openPlainFile(path, file))
        return {};
    QImageReader reader(&file);
    const QByteArray format = reader.format();
    if (std::ranges::none_of(formats, [&](const char* known) { return format == known; }))
        return {};
    reader.setAutoTransform(true);
    const QSize full = reader.size();
    if (limit && full.isValid())
        reader.setScaledSize(full.scaled(*limit, *limit, Qt::KeepAspectRatio).expandedTo({1, 1}));
    return reader.read();
}

/// The shared thumbnail of a file, as the desktops keep them under the checksum of its address.
QImage sharedThumbnail(const std::string& path) {
    const QByteArray address =
        "file://" + QByteArray::fromStdString(path).toPercentEncoding("/!$&'()*+,;=:@-._~");
    const QString name =
        QString::fromLatin1(QCryptographicHash::hash(address, QCryptographicHash::Md5).toHex()) + ".png";
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0)
        return {};
    const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    for (const char* folder : {"/thumbnails/normal/", "/thumbnails/large/"}) {
        QImage image = readPicture((cache + folder + name).toLocal8Bit().toStdString(), std::nullopt);
        if (!image.isNull() && image.text("Thumb::MTime").toLongLong() == status.st_mtime)
            return image;
    }
    return {};
}

QImage scaled(const QImage& image, int pixels) {
    return image.scaled(pixels, pixels, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

} // namespace

ThumbnailLoader::ThumbnailLoader(QObject* parent) : QObject(parent), images(keptBytes) {
    threads.setMaxThreadCount(2);
    threads.setThreadPriority(QThread::LowPriority);
    QImageReader::setAllocationLimit(decodingMegabytes);
}

ThumbnailLoader::~ThumbnailLoader() {
    threads.clear();
    threads.waitForDone();
}

void ThumbnailLoader::dropRequests() {
    ++round;
    threads.clear();
    pending.clear();
}

void ThumbnailLoader::setPaused(bool paused) {
    if (paused && !isPaused)
        dropRequests();
    isPaused = paused;
}

void ThumbnailLoader::clear() {
    dropRequests();
    images.clear();
}

QImage ThumbnailLoader::read(const std::string& path, int pixels) {
    if (const QImage shared = sharedThumbnail(path); !shared.isNull())
        return scaled(shared, pixels);
    const QImage image = readPicture(path, pixels);
    return image.isNull() ? image : scaled(image, pixels);
}

QVariant ThumbnailLoader::imageFor(const PreviewList::Row& row, bool asPicture) {
    if (asPicture && !row.treatAsFolder && ExifHelper::isImageName(row.fullPath)) {
        if (const QImage* image = images.object(QByteArray::fromStdString(row.fullPath))) {
            if (!image->isNull())
                return *image;
        } else {
            request(row);
        }
    }
    return TypeIcons::iconFor(row.fullPath, row.treatAsFolder);
}

void ThumbnailLoader::request(const PreviewList::Row& row) {
    if (isPaused || !pending.insert(row.fullPath).second)
        return;
    const auto deliver = [this, path = row.fullPath, id = row.id, asked = round](QImage image) {
        if (asked != round)
            return;
        pending.erase(path);
        image.setDevicePixelRatio(pixelRatio);
        images.insert(QByteArray::fromStdString(path), new QImage(image),
                      entryBytes + static_cast<int>(path.size()) + static_cast<int>(image.sizeInBytes()));
        if (!image.isNull())
            emit changed(id);
    };
    threads.start(
        [this, path = row.fullPath, pixels = size, deliver] {
            const QImage image = read(path, pixels);
            QMetaObject::invokeMethod(
                this, [deliver, image] { deliver(image); }, Qt::QueuedConnection);
        },
        ++priority);
}

} // namespace tavrin
