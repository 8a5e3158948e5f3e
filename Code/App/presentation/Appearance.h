#pragma once

/// What every start of the program sets up once the QApplication is there, and how the program looks where
/// the desktop brings no style of its own: our palettes, light or dark as the desktop's settings say.
/// Elsewhere the desktop's look stays. Main thread.
namespace tavrin::appearance {

void setUpNames();
void setUpLooks();
void applyOwnPalette(bool dark);

} // namespace tavrin::appearance
