#pragma once

#include "presentation/WindowServices.h"
#include "presentation/preview/PreviewPane.h"

#include <QWidget>
#include <memory>
#include <vector>

class QActionGroup;
class QPushButton;

namespace tavrin {

class ParameterBinding;
enum class Glyph;

/// The row above the list: adding and removing, what takes part, what shows. Object name "listBar".
class ListBar final : public QWidget {
  public:
    ListBar(WindowServices services, PreviewPane& pane);
    ~ListBar() override;

    void setShow(PreviewPane::Show what);

  private:
    void addFilter(const char* key, Glyph glyph, const char* text, const char* tip);
    void addShowMenu();

    const WindowServices services;
    PreviewPane& pane;
    QPushButton* showButton = nullptr;
    QActionGroup* showActions = nullptr;
    std::vector<std::unique_ptr<ParameterBinding>> bindings;
};

} // namespace tavrin
