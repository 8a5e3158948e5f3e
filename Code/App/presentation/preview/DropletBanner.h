#pragma once

#include <QLabel>

namespace tavrin {

/// The line above the list that tells that a droplet is being edited. Object name "dropletBanner".
class DropletBanner final : public QLabel {
    Q_OBJECT

  public:
    DropletBanner();

  private:
    void applyColours();
};

} // namespace tavrin
