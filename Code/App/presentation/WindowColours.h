#pragma once

#include <QColor>

class QPalette;

namespace tavrin {

/// The colours that mean something, for light and for dark palettes. Texts on their tints have a contrast of
/// 6.3 to 1 or more.
struct WindowColours {
    QColor addedTint, addedText;
    QColor removedTint, removedText;
    QColor errorTint, errorText;
    QColor warningTint, warningText;
    QColor infoTint, infoText;
    QColor accent;
    QColor errorMark; ///< on the ground of lists

    [[nodiscard]] static bool isDark(const QPalette& palette);
    [[nodiscard]] static const WindowColours& of(const QPalette& palette);
    /// The accent of a palette, be it ours or the desktop's: the colour of its links, which is made to be
    /// read on the ground of windows.
    [[nodiscard]] static QColor accentOf(const QPalette& palette);
    /// The ground of what is chosen, on which text keeps its own colour.
    [[nodiscard]] static QColor chosenGround(const QPalette& palette);
    [[nodiscard]] static bool isOwn(const QPalette& palette);
    /// Our own palettes, for styles that bring none.
    [[nodiscard]] static QPalette palette(bool dark);
};

} // namespace tavrin
