#pragma once

#include "actions/BaseRenameAction.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tavrin {

/// Gives a file one of its dates, or the present moment, as its name. Its subclasses put the same text into
/// the name.
class RenameToDateAction : public BaseRenameAction {
  public:
    static constexpr const char* name = "Rename to date";

    RenameToDateAction();
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] bool hasLongParameterList() const override { return true; }
    [[nodiscard]] std::vector<ActionExample> examples() const override;
    /// A list without "version" has the indexes of older tables of patterns, which are brought to those of
    /// today. Values set by key are taken as they are.
    void setParameterList(const PropertyDictionary& list) override;

    /// The two menus of patterns.
    [[nodiscard]] std::span<const ParameterChoice> dateMenuItems() const;
    [[nodiscard]] std::span<const ParameterChoice> timeMenuItems() const;

  protected:
    void processName(std::u16string_view fragment, const InputContext& input, OutputContext& output,
                     std::u16string& result) override;

    /// The date as text; the fragment itself where the image has no shooting date; absent where there is no
    /// text, so that the name is to be left alone: the file is gone, a mode is none of the known ones.
    [[nodiscard]] std::optional<std::u16string> dateText(std::u16string_view fragment,
                                                         const InputContext& input) const;

  private:
    [[nodiscard]] std::optional<double> date(const InputContext& input) const;

    std::int32_t paramDatePatternIndex = 1;
    std::int32_t paramTimePatternIndex = 1;
    std::int32_t paramUppercase = 1;
    std::int32_t paramMode = 0;
    std::int32_t paramSeparatorMode = 0;
};

} // namespace tavrin
