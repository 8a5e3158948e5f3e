#pragma once

#include "presentation/WindowServices.h"
#include "support/values/PropertyValue.h"

#include <QWidget>

class QBoxLayout;

namespace tavrin {

class WindowCommands;

/// What stands in the place of an empty list: an invitation to add files, and three ways to begin. Object
/// name "emptyListPage".
class EmptyListPage final : public QWidget {
    Q_OBJECT

  public:
    EmptyListPage(const WindowServices& services, WindowCommands& commands);

  signals:
    /// One of the ways to begin was chosen; its action is set up.
    void begun();

  private:
    void addButtons(QBoxLayout& layout, WindowCommands& commands);
    void addTiles(QBoxLayout& layout);
    void begin(const char* actionName, const PropertyDictionary& parameters);

    const WindowServices services;
};

} // namespace tavrin
