#pragma once

#include "presentation/WindowServices.h"
#include "support/values/PropertyValue.h"

#include <QWidget>

namespace tavrin {

/// What stands in the place of an empty list: an invitation to add files, and three ways to begin. Object
/// name "emptyListPage".
class EmptyListPage final : public QWidget {
  public:
    explicit EmptyListPage(WindowServices services);

  private:
    void begin(const char* actionName, const PropertyDictionary& parameters);

    const WindowServices services;
};

} // namespace tavrin
