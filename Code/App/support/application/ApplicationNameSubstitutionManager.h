#pragma once

#include <string>

namespace tavrin {

/// Puts the second edition's name in the place of the first's, in the titles of menu items.
struct ApplicationNameSubstitutionManager {
    /// The title that the item is to bear.
    [[nodiscard]] static std::u16string substituteApplicationNameInMenuItem(std::u16string title);
};

} // namespace tavrin
