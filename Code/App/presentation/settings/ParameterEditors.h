#pragma once

#include <QComboBox>
#include <QString>

namespace tavrin {

class BaseRenameAction;
struct ParameterDescription;

/// The control of one parameter, by its kind, bound to the action: what the user enters is written at each
/// keystroke, what changes elsewhere is shown. Its object name is the key. The caller takes it over.
[[nodiscard]] QWidget* makeParameterEditor(const ParameterDescription& parameter, BaseRenameAction& action);

/// A box that may be narrower than its rows, whose list is as wide as the longest of them.
class WidePopUpBox : public QComboBox {
  public:
    void showPopup() override;

  protected:
    /// A text that is cut shows that it is.
    void initStyleOption(QStyleOptionComboBox* option) const override;
};

/// The head of a section: a demi-bold label; below other sections with a fine line and some air above.
[[nodiscard]] QWidget* makeSectionHead(const QString& text, bool isFirst = false);

/// A fine line from side to side.
[[nodiscard]] QWidget* makeLine();

} // namespace tavrin
