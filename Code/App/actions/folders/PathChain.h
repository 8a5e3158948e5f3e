#pragma once

#include "actions/ParameterDescription.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

/// The names of several folders of a path, from the outermost to the one that holds the item, joined by a
/// separator: the text of the actions that insert path components, and its parameters.
class PathChain {
  public:
    /// How the name of the folder that holds the item is taken.
    enum class ParentName {
        asItStands,
        formatted, ///< "%%" in it comes out as "%"
    };

    explicit PathChain(ParentName kindOfParentName) : parentName(kindOfParentName) {}

    /// `add` takes a row and the field that caches it.
    template <typename Add> void addParameters(Add add) {
        add(numberParameter("levels", "Folders", 0, 0).between(0, 98).shownMore(1), levels);
        add(choiceParameter("exceptionMode", "If there are fewer", exceptionChoices(), 0, 0), exceptionMode);
        add(textParameter("prefix", "Text in front", u"_"), prefix);
        add(textParameter("pathSeparator", "Between", u"_"), pathSeparator);
        add(textParameter("suffix", "Text behind", u"_"), suffix);
    }

    /// The text for the item at the path, valid until the next call; absent when there are no folders, or
    /// fewer than asked for and the parameters want all or none.
    [[nodiscard]] std::optional<std::u16string_view> textFor(std::string_view path);

  private:
    [[nodiscard]] static std::span<const ParameterChoice> exceptionChoices();
    /// The stretch of the path with the folders that take part.
    [[nodiscard]] std::optional<std::string_view> foldersOf(std::string_view path) const;
    void appendFolder(std::string_view name, bool isParent);

    ParentName parentName;
    std::int32_t levels = 0;
    std::int32_t exceptionMode = 0;
    std::u16string pathSeparator;
    std::u16string prefix;
    std::u16string suffix;
    std::u16string folder; ///< one name in hand
    std::u16string text;
};

} // namespace tavrin
