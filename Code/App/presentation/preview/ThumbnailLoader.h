#pragma once

#include "shell/preview/PreviewList.h"

#include <QCache>
#include <QIcon>
#include <QImage>
#include <QObject>
#include <QThreadPool>
#include <QVariant>
#include <cstdint>
#include <string>
#include <unordered_set>

namespace tavrin {

/// The desktop's icons for types of files, by extension.
struct TypeIcons {
    [[nodiscard]] static QIcon iconFor(const std::string& path, bool isFolder);
};

/// Small pictures of the rows that are seen. Until a picture is there, and for files that are none, the icon
/// of the file's type stands in its place. Pictures are read on two threads of low priority, what was asked
/// for last comes first, and 64 MiB of them are kept. Files are taken for hostile: only plain files are
/// opened, only as pictures made of dots, and none that would take much memory. Main thread.
class ThumbnailLoader final : public QObject {
    Q_OBJECT

  public:
    explicit ThumbnailLoader(QObject* parent = nullptr);
    ~ThumbnailLoader() override;

    /// In pixels of the screen, of which there are `ratio` to one of the window.
    void setSize(int pixels, double ratio) {
        size = pixels;
        pixelRatio = ratio;
    }
    [[nodiscard]] QVariant imageFor(const PreviewList::Row& row, bool asPicture);
    /// Scrolls fast: nothing new is read meanwhile, and what waits to be read is not wanted any more.
    void setPaused(bool paused);
    /// Whether pictures are being read.
    [[nodiscard]] bool isReading() const { return !pending.empty(); }
    /// Files may have changed: forgets all pictures.
    void clear();

    /// The picture of a file, scaled to fit `pixels`; null when it is none or can't be read. From the
    /// thumbnails that the desktop shares, else from the file. Any thread.
    [[nodiscard]] static QImage read(const std::string& path, int pixels);

  signals:
    /// The picture of a row has come.
    void changed(tavrin::RowId id);

  private:
    void request(const PreviewList::Row& row);
    void dropRequests();

    int size = 32;
    double pixelRatio = 1;
    std::uint64_t round = 0; ///< goes up when requests are dropped, so that what comes late is left out
    bool isPaused = false;
    int priority = 0;
    QThreadPool threads;
    QCache<QByteArray, QImage> images; ///< by path; cost in bytes; a null image: there is none
    std::unordered_set<std::string> pending;
};

} // namespace tavrin
