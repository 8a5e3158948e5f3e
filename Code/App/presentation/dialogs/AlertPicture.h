#pragma once

#include "shell/asking/FrontEnd.h"

#include <QPixmap>

class QWidget;

namespace tavrin {

/// The sign beside a message. A desktop has signs of its own; where there are only those of the plain style,
/// ours stand in.
struct AlertPicture {
    /// Null where the desktop's sign is to be shown.
    [[nodiscard]] static QPixmap of(AlertStyle style, const QWidget& onWidget);
};

} // namespace tavrin
