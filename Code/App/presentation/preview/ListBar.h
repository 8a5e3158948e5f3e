#pragma once

#include "presentation/WindowServices.h"
#include "presentation/preview/PreviewTableModel.h"

#include <QWidget>
#include <array>
#include <memory>
#include <vector>

class QActionGroup;
class QPushButton;
class QToolButton;

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
    /// With less room above and below, for low windows.
    void setLow(bool isLow);

    /// What it needs at least: where there is less, buttons lose their captions, then go into a menu.
    [[nodiscard]] QSize minimumSizeHint() const override;

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    /// How much of the row shows, from all of it to the least.
    enum class Stage { captions, icons, menu };

    void measure();
    void arrange();
    void apply(Stage newStage);
    void addMoreMenu(WindowCommands& commands);
    void addFilter(const char* key, Glyph glyph, const QString& text, const QString& tip);
    void addShowMenu(WindowCommands& commands);

    const WindowServices services;
    std::vector<QToolButton*> captioned; ///< those that lose their captions
    std::vector<QWidget*> folding;       ///< those that go into the menu
    QToolButton* moreButton = nullptr;
    Stage stage = Stage::captions;
    std::array<int, 3> widths{};
    QPushButton* showButton = nullptr;
    QActionGroup* showActions = nullptr;
    std::vector<std::unique_ptr<ParameterBinding>> bindings;
};

} // namespace tavrin
