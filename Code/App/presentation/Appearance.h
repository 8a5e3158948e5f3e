#pragma once

namespace tavrin {

/// How the program looks where the desktop brings no style of its own: our palettes, light or dark as the
/// desktop's settings say. Elsewhere the desktop's look stays.
struct Appearance {
    static void apply();
    static void applyOwnPalette(bool dark);
};

} // namespace tavrin
