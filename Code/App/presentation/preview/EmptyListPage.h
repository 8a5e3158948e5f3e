#pragma once

#include "presentation/WindowServices.h"
#include "support/values/PropertyValue.h"

#include <QScrollArea>
#include <vector>

class QBoxLayout;
class QGridLayout;
class QLabel;

namespace tavrin {

class WindowCommands;

/// What stands in the place of an empty list: an invitation to add files, and three ways to begin. Where it
/// is low some of it goes; the invitation and its buttons stay, and scroll before anything is cut. Object
/// name "emptyListPage".
class EmptyListPage final : public QScrollArea {
    Q_OBJECT

  public:
    EmptyListPage(const WindowServices& services, WindowCommands& commands);

  signals:
    /// One of the ways to begin was chosen; its action is set up.
    void begun();

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void addWords(QBoxLayout& layout);
    void addButtons(QBoxLayout& layout, WindowCommands& commands);
    void addTiles(QBoxLayout& layout);
    void arrange();
    void arrangeTiles(int room);
    void begin(const char* actionName, const PropertyDictionary& parameters);

    class Tile;

    const WindowServices services;
    QLabel* picture;
    QLabel* promise;
    QBoxLayout* buttons = nullptr;
    QWidget* beginning; ///< the tiles, with what stands above them
    QGridLayout* grid;
    std::vector<Tile*> tiles;
};

} // namespace tavrin
