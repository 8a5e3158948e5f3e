#pragma once

#include <QIcon>
#include <string>

namespace tavrin {

/// The desktop's icons for types of files, by extension.
struct TypeIcons {
    [[nodiscard]] static QIcon iconFor(const std::string& path, bool isFolder);
};

} // namespace tavrin
