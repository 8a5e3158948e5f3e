#pragma once

#include "presentation/WindowServices.h"

#include <QWidget>
#include <memory>
#include <string>

namespace tavrin {

class BaseRenameAction;

/// A field that mixes text and tags, of up to four lines. Each tag of the library shows as a rounded token
/// and counts as one position of the cursor. Object name: the key of the parameter.
class PatternEditor final : public QWidget {
  public:
    PatternEditor(std::string key, BaseRenameAction& action, const WindowServices& services);
    ~PatternEditor() override;

    /// Puts a text (a tag, say) in at the cursor.
    void insert(const QString& text);

  private:
    struct Parts;
    std::unique_ptr<Parts> parts;
};

} // namespace tavrin
