#pragma once

#include "presentation/settings/ParameterBinding.h"

#include <QWidget>
#include <vector>

class QAbstractButton;
class QComboBox;

namespace tavrin {

class BaseRenameAction;

/// Which part of a name the action works on ("Apply to"): one button for each, on which that part of a sample
/// name is marked.
class FragmentSelector final : public QWidget {
  public:
    enum class Size { withCaptions, withoutCaptions, box };

    FragmentSelector(BaseRenameAction& action, Size size);

  private:
    void addButtons(bool withCaptions);
    void addBox();
    void show(int mode);

    std::vector<QAbstractButton*> buttons; ///< empty where a box takes their place
    QComboBox* box = nullptr;
    ParameterBinding binding;
};

} // namespace tavrin
