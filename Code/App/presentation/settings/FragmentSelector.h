#pragma once

#include "presentation/settings/ParameterBinding.h"

#include <QWidget>
#include <vector>

class QAbstractButton;
class QComboBox;
class QGridLayout;
class QLabel;

namespace tavrin {

class BaseRenameAction;

/// Which part of a name the action works on ("Apply to"): one button for each, on which that part of a sample
/// name is marked.
class FragmentSelector final : public QWidget {
    Q_OBJECT

  public:
    enum class Size { withCaptions, withoutCaptions, box };

    FragmentSelector(BaseRenameAction& action, Size size);

    [[nodiscard]] QSize minimumSizeHint() const override;

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void addButtons(bool withCaptions);
    void addBox();
    void arrange(int newColumns);
    void show(int mode);

    std::vector<QAbstractButton*> buttons; ///< empty where a box takes their place
    std::vector<QLabel*> captions;         ///< empty where there is no room for them
    QGridLayout* grid = nullptr;
    int columns = 0;
    QComboBox* box = nullptr;
    ParameterBinding binding;
};

} // namespace tavrin
