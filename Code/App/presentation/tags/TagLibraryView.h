#pragma once

#include "presentation/WindowServices.h"

#include <QWidget>
#include <memory>

namespace tavrin {

/// The list of tags beside a pattern editor: tabs by category, a filter, and each tag's value for the item
/// that is selected in the list. A tag goes into the editor of the same column by double click, Return or
/// drag. Object name "tagLibraryView".
class TagLibraryView final : public QWidget {
  public:
    explicit TagLibraryView(WindowServices services);
    ~TagLibraryView() override;

  private:
    struct Parts;
    std::unique_ptr<Parts> parts;
};

} // namespace tavrin
