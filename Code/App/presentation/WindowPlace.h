#pragma once

#include <QList>
#include <QRect>

namespace tavrin {

/// Where the main window stands, in device independent pixels and without its frame. What a screen has to
/// give is what panels leave of it, never the whole screen.
struct WindowPlace {
    static constexpr QSize least{560, 420};

    /// The first time: as large as is of use, with room for a frame, in the middle of that screen.
    [[nodiscard]] static QRect first(const QRect& available);
    /// Whether a screen is so narrow that the window had better take it all.
    [[nodiscard]] static bool fills(const QRect& available);
    /// The place cut to the screen that shows most of it, the first one where none does. The first must be
    /// there.
    [[nodiscard]] static QRect cut(const QRect& place, const QList<QRect>& available);
};

} // namespace tavrin
