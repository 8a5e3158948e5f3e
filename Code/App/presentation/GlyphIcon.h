#pragma once

#include <QIcon>
#include <QPalette>

class QPainter;

namespace tavrin {

/// Line drawings of our own, so that no picture hangs on the fonts that a desktop happens to have.
enum class Glyph {
    add,
    remove,
    up,
    down,
    search,
    reset,
    help,
    renamed,
    unchanged,
    distinct,
    problem,
    files,
    folders,
    subfolders,
    automatic,
    byHand,
    fileItem, ///< for rows of lists, with finer lines
    folderItem,
    check,
    pen,
    undo,
    redo,
    clock,
    leftOut,
    info,
    close,
    copy,
    text,
};

struct GlyphIcon {
    /// An icon that always has the present colour of a role of the palette, at any size.
    [[nodiscard]] static QIcon of(Glyph glyph, QPalette::ColorRole role = QPalette::ButtonText);
    /// Draws it as large as fits, in the middle. `isMirrored` for what points along the line of reading.
    static void paint(QPainter& painter, const QRect& place, Glyph glyph, const QColor& colour,
                      bool isMirrored = false);
};

} // namespace tavrin
