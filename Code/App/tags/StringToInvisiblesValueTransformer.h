#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

class UserDefaults;

/// Makes blanks and control characters of names visible while the user default "showInvisibles" is on.
class StringToInvisiblesValueTransformer {
  public:
    /// Follows the user defaults, which must outlive it.
    explicit StringToInvisiblesValueTransformer(UserDefaults& userDefaults);

    /// The visible sign of a character; 0 for one that is visible by itself.
    [[nodiscard]] static char16_t signFor(char32_t c);

    [[nodiscard]] std::optional<std::u16string>
    transformedValue(const std::optional<std::u16string>& text) const;

  private:
    UserDefaults& defaults;
    std::atomic<bool> showInvisibles;
    std::shared_ptr<void> observation; ///< last, so that it ends first
};

} // namespace tavrin
