#pragma once

#include <optional>
#include <string>
#include <string_view>

// The second edition's name in the place of the first's. This build is the first edition and asks for none.

namespace tavrin {

/// In the titles of menu items.
struct ApplicationNameSubstitutionManager {
    [[nodiscard]] static std::u16string substituteApplicationNameInMenuItem(std::u16string title) {
        // The longer name first, which holds the shorter one.
        for (const auto& [name, by] :
             {std::pair<std::u16string_view, std::u16string_view>(u"Tavrin 8", u"Morvane 9"),
              {u"Tavrin", u"Morvane"}})
            for (std::size_t at = 0; (at = title.find(name, at)) != title.npos; at += by.size())
                title.replace(at, name.size(), by);
        return title;
    }
};

/// In the texts of panels. Absent stays absent, and the way back changes nothing.
struct ApplicationNameSubstitutionStringFormatter {
    [[nodiscard]] static std::optional<std::u16string>
    stringForObjectValue(const std::optional<std::u16string>& text) {
        return text ? std::optional(
                          ApplicationNameSubstitutionManager::substituteApplicationNameInMenuItem(*text))
                    : std::nullopt;
    }
    [[nodiscard]] static std::u16string getObjectValue(std::u16string forString) { return forString; }
};

} // namespace tavrin
