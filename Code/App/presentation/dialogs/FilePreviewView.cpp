#include "presentation/dialogs/FilePreviewView.h"

#include "platform/metadata/FileManager.h"
#include "presentation/preview/ThumbnailLoader.h"

#include <QApplication>
#include <QPainter>
#include <QPointer>
#include <QThreadPool>

namespace tavrin {

namespace {

constexpr int sourceSize = 256;

} // namespace

FilePreviewView::FilePreviewView() {
    setObjectName("filePreview");
    setAccessibleName(tr("Picture of the item"));
    setFixedSize(sizeHint());
}

void FilePreviewView::setPath(const std::string& newPath, bool thumbnail) {
    path = newPath;
    image = QPixmap();
    if (!path.empty()) {
        image =
            TypeIcons::iconFor(path, !FileManager::instance().isFile(path)).pixmap(sourceSize, sourceSize);
        if (thumbnail)
            asyncThumbnailGeneration();
    }
    update();
}

/// The picture counts only while the view is still to show the same file.
void FilePreviewView::asyncThumbnailGeneration() {
    const QPointer<FilePreviewView> self(this);
    QThreadPool::globalInstance()->start([self, wanted = path] {
        const QImage picture = ThumbnailLoader::read(wanted, sourceSize);
        QMetaObject::invokeMethod(
            qApp,
            [self, wanted, picture] {
                if (!self || self->path != wanted || picture.isNull())
                    return;
                self->image = QPixmap::fromImage(picture);
                self->update();
            },
            Qt::QueuedConnection);
    });
}

void FilePreviewView::paintEvent(QPaintEvent*) {
    if (image.isNull())
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QSize size =
        image.size().scaled(width(), height(), Qt::KeepAspectRatio).boundedTo(QSize(sourceSize, sourceSize));
    // Flush with the text beside it.
    const QRect place(QPoint((width() - size.width()) / 2, 0), size);
    painter.drawPixmap(place, image);
}

} // namespace tavrin
