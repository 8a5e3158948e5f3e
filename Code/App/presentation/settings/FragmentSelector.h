#pragma once

#include "presentation/settings/ParameterBinding.h"

#include <QWidget>
#include <vector>

class QAbstractButton;
class QGridLayout;
class QLabel;

namespace tavrin {

class BaseRenameAction;

/// Which part of a name the action works on ("Apply to"): one button for each, on which that part of a sample
/// name is marked, below a heading that says it in words.
class FragmentSelector final : public QWidget {
    Q_OBJECT

  public:
    /// They differ in height and font alone.
    enum class Size { large, medium, small };

    FragmentSelector(BaseRenameAction& action, Size size);

    [[nodiscard]] QSize minimumSizeHint() const override;

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void addButtons(Size size);
    void arrange(int newColumns);
    void show(int mode);

    std::vector<QAbstractButton*> buttons;
    QLabel* heading;
    QGridLayout* grid;
    int columns = 0;
    ParameterBinding binding;
};

} // namespace tavrin
