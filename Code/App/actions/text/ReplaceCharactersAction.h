#pragma once

#include "actions/BaseRenameAction.h"
#include "support/text/TextSearch.h"

#include <array>
#include <unordered_map>

namespace tavrin {

/// Replaces single characters (composed character sequences) by up to four rows, each a set of characters and
/// what takes their place. One pass: what a row has put in is not replaced by another.
class ReplaceCharactersAction : public BaseRenameAction {
  public:
    static constexpr const char* name = "Replace characters";

    ReplaceCharactersAction();
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override;

    /// What a user may type as a replacement: a single composed character sequence. Stored lists may hold
    /// longer ones.
    [[nodiscard]] static PropertyValue validateWith0(const PropertyValue& value);
    [[nodiscard]] static PropertyValue validateWith1(const PropertyValue& value);
    [[nodiscard]] static PropertyValue validateWith2(const PropertyValue& value);
    [[nodiscard]] static PropertyValue validateWith3(const PropertyValue& value);
    [[nodiscard]] PropertyValue validatedValue(const PropertyValue& value,
                                               std::string_view key) const override;

  protected:
    void prepareParameters() override;
    void processName(std::u16string_view fragment, const InputContext& input, OutputContext& output,
                     std::u16string& result) override;

  private:
    struct Row {
        std::u16string characters;
        std::u16string with;
        std::int32_t ignoreCase = 1;
    };
    static constexpr std::int8_t noRow = -1;

    [[nodiscard]] std::int8_t findRow(std::u16string_view sequence) const;
    [[nodiscard]] std::int8_t rowOfSequence(std::u16string_view sequence);
    void append(std::u16string_view sequence, std::int8_t row, std::u16string& result) const;

    std::array<Row, 4> rows;
    std::array<std::int8_t, 128> rowOfAscii{};
    std::unordered_map<std::u16string, std::int8_t> rowOfOthers; ///< bounded memory of findRow
};

} // namespace tavrin
