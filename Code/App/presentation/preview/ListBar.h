#pragma once

#include "presentation/WindowServices.h"
#include "presentation/preview/PreviewTableModel.h"

#include <QWidget>
#include <memory>
#include <vector>

class QActionGroup;
class QPushButton;

namespace tavrin {

class ParameterBinding;
class WindowCommands;
enum class Glyph;

/// The row above the list: adding and removing, what takes part, what shows. Object name "listBar".
class ListBar final : public QWidget {
    Q_OBJECT

  public:
    ListBar(const WindowServices& services, WindowCommands& commands);
    ~ListBar() override;

    /// `label` is for what has no entry in the menu.
    void setShow(PreviewTableModel::Show what, const QString& label = {});

  private:
    void addFilter(const char* key, Glyph glyph, const QString& text, const QString& tip);
    void addShowMenu(WindowCommands& commands);

    const WindowServices services;
    QPushButton* showButton = nullptr;
    QActionGroup* showActions = nullptr;
    std::vector<std::unique_ptr<ParameterBinding>> bindings;
};

} // namespace tavrin
