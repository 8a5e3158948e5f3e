#pragma once

#include "presentation/WindowServices.h"

#include <QWidget>
#include <memory>

namespace tavrin {

/// The list of steps with its buttons. Object name "stepsPane".
class StepsPane final : public QWidget {
  public:
    StepsPane(WindowServices services, QWidget* parent);
    ~StepsPane() override;

    /// The steps or the current one have changed.
    void stepsChanged();

  private:
    struct Parts;
    std::unique_ptr<Parts> parts;
};

} // namespace tavrin
