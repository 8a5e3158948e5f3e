#pragma once

#include <QSet>
#include <QString>

namespace tavrin {

/// Gives each label of a pane an access key of its own, as far as its letters last.
class AccessKeys {
  public:
    /// The label with its key marked; keys of the menu bar and of the window's buttons are left to them.
    [[nodiscard]] QString mark(const QString& label);

  private:
    QSet<QChar> taken;
};

} // namespace tavrin
