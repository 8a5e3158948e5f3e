#pragma once

/// What every start of the program sets up once the QApplication is there, and how the program looks where
/// the desktop brings no style of its own: our palettes, light or dark as the desktop's settings say.
/// Elsewhere the desktop's look stays. Main thread.
namespace tavrin::appearance {

/// Before the QApplication is there: where no desktop brings file dialogs of its own, those of the desktop
/// portal are used, if Qt has its plugin for them and the portal answers. Nothing depends on either.
void preferPortal();
void setUpNames();
void setUpLooks();
void applyOwnPalette(bool dark);

} // namespace tavrin::appearance
