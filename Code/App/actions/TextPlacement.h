#pragma once

#include "actions/ActionFamilies.h"
#include "actions/BaseAction.h"
#include "support/text/TextSearch.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

/// The search option that a parameter like `ignoreCase` stands for: only 1 ignores case.
[[nodiscard]] inline CaseSensitivity caseSensitivity(std::int32_t ignoreCase) {
    return ignoreCase == 1 ? CaseSensitivity::insensitive : CaseSensitivity::sensitive;
}

/// The location of an occurrence, -1 if there is none. Modes 0 to 5 are the first to the sixth from the
/// front, 6 and above the last, the second to last and so on. Matches never overlap.
[[nodiscard]] std::int32_t findInsertionPointIn(std::u16string_view name, const TextSearch& search,
                                                std::int32_t mode);

/// Puts a text into a name, for all families of actions that do so: a part of the action, which tells it the
/// place, with the parameters that the place needs. Positions count UTF-16 code units.
class TextPlacement {
  public:
    explicit TextPlacement(Place where) : place(where) {}

    /// Adds the rows of the parameters to the action that this is a part of. Keys differ where the action has
    /// such a parameter of its own.
    void addParametersTo(BaseAction& action, std::string_view modeKey = "mode",
                         std::string_view ignoreCaseKey = "ignoreCase");
    /// To be called after the caches of the action have been refreshed.
    void prepareParameters();

    [[nodiscard]] Place where() const { return place; }
    [[nodiscard]] bool isBesideText() const {
        return place == Place::beforeText || place == Place::afterText;
    }

    /// Appends the new name to `result`; the name comes unchanged where the occurrence of the text beside
    /// which it goes does not exist, and where the position is out of range.
    void put(std::u16string_view text, std::u16string_view name, std::u16string& result) const {
        if (place == Place::start)
            result.append(text).append(name);
        else if (place == Place::end)
            result.append(name).append(text);
        else if (place == Place::wholeName)
            result += text;
        else
            putInside(text, name, result);
    }
    /// The same with a text that may be absent, which leaves the name as it is.
    void putIfAny(const std::optional<std::u16string_view>& text, std::u16string_view name,
                  std::u16string& result) const {
        if (text)
            put(*text, name, result);
        else
            result += name;
    }

  private:
    void putInside(std::u16string_view text, std::u16string_view name, std::u16string& result) const;
    /// Absent where there is no such place.
    [[nodiscard]] std::optional<std::size_t> indexIn(std::u16string_view name) const;

    Place place;
    std::int32_t position = 0;
    std::int32_t mode = 0; ///< from which end the position counts, or which occurrence is meant
    std::u16string searchTerm;
    std::int32_t ignoreCase = 1;
    TextSearch search; ///< for `searchTerm` in form C
};

} // namespace tavrin
