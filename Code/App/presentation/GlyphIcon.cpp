#include "presentation/GlyphIcon.h"

#include <QApplication>
#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>
#include <algorithm>
#include <array>

namespace tavrin {

namespace {

constexpr std::array fileNames{"add",     "remove",     "up",        "down",     "search",    "reset",
                               "help",    "renamed",    "unchanged", "distinct", "problem",   "files",
                               "folders", "subfolders", "automatic", "byhand",   "file-item", "folder-item",
                               "check",   "pen",        "undo",      "redo",     "clock",     "left-out",
                               "info",    "close",      "copy",      "text"};

/// The drawings are black, which is put into another colour here.
QByteArray drawingIn(Glyph glyph, const QColor& colour) {
    QFile file(QString(":/icons/glyphs/%1.svg").arg(fileNames.at(static_cast<std::size_t>(glyph))));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll().replace("#000000", colour.name().toLatin1());
}

QPixmap drawn(Glyph glyph, const QColor& colour, int size, double scale) {
    const QString key = QString("tavrin-glyph-%1-%2-%3-%4")
                            .arg(static_cast<int>(glyph))
                            .arg(colour.rgba())
                            .arg(size)
                            .arg(scale);
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap))
        return pixmap;
    const int pixels = static_cast<int>(size * scale);
    pixmap = QPixmap(pixels, pixels);
    pixmap.fill(Qt::transparent);
    QSvgRenderer renderer(drawingIn(glyph, colour));
    QPainter painter(&pixmap);
    painter.setOpacity(colour.alphaF());
    renderer.render(&painter);
    painter.end();
    pixmap.setDevicePixelRatio(scale);
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}

class GlyphEngine final : public QIconEngine {
  public:
    GlyphEngine(Glyph shownGlyph, QPalette::ColorRole colourRole) : glyph(shownGlyph), role(colourRole) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        GlyphIcon::paint(*painter, rect, glyph, colourFor(mode));
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        return scaledPixmap(size, mode, state, 1.0);
    }

    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State, qreal) override {
        return drawn(glyph, colourFor(mode), std::min(size.width(), size.height()), 1.0);
    }

    [[nodiscard]] QIconEngine* clone() const override { return new GlyphEngine(glyph, role); }

  private:
    [[nodiscard]] QColor colourFor(QIcon::Mode mode) const {
        const QPalette palette = QApplication::palette();
        switch (mode) {
        case QIcon::Disabled:
            return palette.color(QPalette::Disabled, role);
        case QIcon::Selected: // on the ground of chosen things, where colours stay as they are
        case QIcon::Normal:
        case QIcon::Active:
            break;
        }
        return palette.color(role);
    }

    Glyph glyph;
    QPalette::ColorRole role;
};

} // namespace

QIcon GlyphIcon::of(Glyph glyph, QPalette::ColorRole role) { return QIcon(new GlyphEngine(glyph, role)); }

void GlyphIcon::paint(QPainter& painter, const QRect& place, Glyph glyph, const QColor& colour,
                      bool isMirrored) {
    const int size = std::min(place.width(), place.height());
    QRect square(0, 0, size, size);
    square.moveCenter(place.center());
    painter.save();
    if (isMirrored) {
        painter.translate(2 * square.center().x() + 1, 0);
        painter.scale(-1, 1);
    }
    painter.drawPixmap(square, drawn(glyph, colour, size, painter.device()->devicePixelRatioF()));
    painter.restore();
}

} // namespace tavrin
