#pragma once

#include "presentation/WindowServices.h"

class QWidget;

namespace tavrin {

/// The settings of the application. Every control is live; opened again, the one window comes to the front.
struct PreferencesWindow {
    enum class Page { lastShown, history };
    static void open(QWidget* parent, const WindowServices& services, Page page = Page::lastShown);
};

} // namespace tavrin
