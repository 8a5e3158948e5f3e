#pragma once

#include <QString>

class QWidget;

namespace tavrin {

/// The head of a section: a demi-bold label; below other sections with a fine line and some air above.
[[nodiscard]] QWidget* makeSectionHead(const QString& text, bool isFirst = false);

/// A fine line from side to side.
[[nodiscard]] QWidget* makeLine();

} // namespace tavrin
