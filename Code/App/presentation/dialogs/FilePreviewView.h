#pragma once

#include <QImage>
#include <QPixmap>
#include <QWidget>
#include <string>

namespace tavrin {

/// Shows a file by the icon of its type, and by its picture as soon as that has been read on another thread.
class FilePreviewView final : public QWidget {
    Q_OBJECT

  public:
    FilePreviewView();

    /// The file (path in bytes), or nothing for an empty path. With `thumbnail` its picture is sought.
    void setPath(const std::string& path, bool thumbnail);

    [[nodiscard]] QSize sizeHint() const override { return {216, 150}; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    void asyncThumbnailGeneration();

    std::string path;
    QPixmap image;
};

} // namespace tavrin
