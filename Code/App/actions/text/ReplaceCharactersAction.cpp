#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"
#include "actions/Sequences.h"
#include "actions/TextPlacement.h"
#include "support/text/TextSearch.h"

#include <algorithm>
#include <array>

namespace tavrin {

namespace {

struct RowKeys {
    std::string_view characters;
    std::string_view with;
    std::string_view ignoreCase;
    std::string_view caseWord;
};
constexpr std::array<RowKeys, 4> rowKeys{{
    {"replaceCharacters0", "with0", "ignoreCase0", "case1"},
    {"replaceCharacters1", "with1", "ignoreCase1", "case2"},
    {"replaceCharacters2", "with2", "ignoreCase2", "case3"},
    {"replaceCharacters3", "with3", "ignoreCase3", "case4"},
}};

/// Replaces single characters (composed character sequences) by up to four rows, each a set of characters and
/// what takes their place. One pass: what a row has put in is not replaced by another.
class ReplaceCharactersAction : public FragmentAction {
  public:
    ReplaceCharactersAction() {
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const auto& keys = rowKeys[i];
            const auto addFirst = [&](const ParameterDescription& row, std::u16string& field) {
                addParameter(i == 0 ? row.first() : row.first().orLeftOut(), field);
            };
            addFirst(textParameter(keys.characters, "Any of"), rows[i].characters);
            addFirst(characterParameter(keys.with, "Replace by", u"").beside(keys.characters), rows[i].with);
            addParameter(checkboxParameter(keys.ignoreCase, "Ignore case", 1)
                             .beside(keys.characters)
                             .alone(keys.caseWord),
                         rows[i].ignoreCase);
        }
    }
    [[nodiscard]] PropertyValue validatedValue(const PropertyValue& value,
                                               std::string_view key) const override {
        return std::ranges::find(rowKeys, key, &RowKeys::with) == rowKeys.end()
                   ? BaseRenameAction::validatedValue(value, key)
                   : validateWith(value);
    }

  protected:
    void prepareParameters() override {
        BaseRenameAction::prepareParameters();
        rowOf.refill([this](std::u16string_view sequence) { return findRow(sequence); });
    }

    void processName(std::u16string_view fragment, std::u16string& result) override {
        forEachSequence(fragment, [&](std::u16string_view sequence) {
            const auto row =
                rowOf.valueFor(sequence, [this](std::u16string_view other) { return findRow(other); });
            if (row == noRow)
                result += sequence;
            else
                result += rows[static_cast<std::size_t>(row)].with;
        });
    }

  private:
    struct Row {
        std::u16string characters;
        std::u16string with;
        std::int32_t ignoreCase = 1;
    };
    static constexpr std::int8_t noRow = -1;

    /// What a user may type as a replacement: a single composed character sequence. Stored lists may hold
    /// longer ones.
    static PropertyValue validateWith(const PropertyValue& value) {
        const auto* text = value.asText();
        return text ? PropertyValue(std::u16string(text::firstComposedSequence(*text))) : value;
    }

    [[nodiscard]] std::int8_t findRow(std::u16string_view sequence) const {
        const auto place = std::ranges::find_if(rows, [&](const Row& row) {
            return contains(row.characters, sequence, caseSensitivity(row.ignoreCase));
        });
        return place == rows.end() ? noRow : static_cast<std::int8_t>(place - rows.begin());
    }

    std::array<Row, rowKeys.size()> rows;
    SequenceMemory<std::int8_t> rowOf;
};

class RemoveCharactersAction final : public ReplaceCharactersAction {
  public:
    RemoveCharactersAction() {
        for (const auto& keys : rowKeys)
            hideParameter(keys.with);
    }
};

} // namespace

std::vector<ActionEntry> replaceCharactersActions() {
    return {
        {"Replace characters",
         "Replace characters",
         {"replace-chars"},
         ActionCategory::replace,
         newAction<ReplaceCharactersAction>,
         {{{{"replaceCharacters0", u" -"}, {"with0", u"_"}},
           u"my holiday-photo.jpg",
           u"my_holiday_photo.jpg"},
          {{{"replaceCharacters0", u"ab"}, {"with0", u"x"}, {"replaceCharacters1", u"x"}, {"with1", u"y"}},
           u"abx",
           u"xxy"}}},
        {"Remove characters",
         "Remove characters",
         {"remove-chars"},
         ActionCategory::remove,
         newAction<RemoveCharactersAction>,
         {{{{"replaceCharacters0", u"[]()"}}, u"[draft] plan (2).txt", u"draft plan 2.txt"}}},
    };
}

} // namespace tavrin
