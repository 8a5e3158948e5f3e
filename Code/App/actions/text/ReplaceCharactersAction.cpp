#include "actions/text/ReplaceCharactersAction.h"

#include "actions/ActionFamilies.h"
#include "actions/RenameActionHelper.h"
#include "support/text/Text.h"

#include <algorithm>

namespace tavrin {

namespace {

constexpr std::array<std::array<std::string_view, 3>, 4> rowKeys{{
    {"replaceCharacters0", "with0", "ignoreCase0"},
    {"replaceCharacters1", "with1", "ignoreCase1"},
    {"replaceCharacters2", "with2", "ignoreCase2"},
    {"replaceCharacters3", "with3", "ignoreCase3"},
}};

/// Every unit is a composed character sequence by itself.
bool isPlain(std::u16string_view text) {
    return std::none_of(text.begin(), text.end(),
                        [](char16_t unit) { return unit >= 0x80 || unit == u'\r'; });
}

} // namespace

ReplaceCharactersAction::ReplaceCharactersAction() {
    for (std::size_t i = 0; i < rows.size(); ++i) {
        addParameter(textParameter(rowKeys[i][0], "Any of"), rows[i].characters);
        addParameter(characterParameter(rowKeys[i][1], "Replace by", u"").beside(rowKeys[i][0]),
                     rows[i].with);
        addParameter(checkboxParameter(rowKeys[i][2], "Ignore case", 1, 1).beside(rowKeys[i][0]),
                     rows[i].ignoreCase);
    }
}

std::vector<ActionExample> ReplaceCharactersAction::examples() const {
    return {
        {{{"replaceCharacters0", u" -"}, {"with0", u"_"}}, u"my holiday-photo.jpg", u"my_holiday_photo.jpg"},
        {{{"replaceCharacters0", u"ab"}, {"with0", u"x"}, {"replaceCharacters1", u"x"}, {"with1", u"y"}},
         u"abx",
         u"xxy"}};
}

PropertyValue ReplaceCharactersAction::validateWith0(const PropertyValue& value) {
    const auto* text = value.asText();
    if (!text || text->size() < 2)
        return value;
    return std::u16string(text::firstComposedSequence(*text));
}

PropertyValue ReplaceCharactersAction::validateWith1(const PropertyValue& value) {
    return validateWith0(value);
}
PropertyValue ReplaceCharactersAction::validateWith2(const PropertyValue& value) {
    return validateWith0(value);
}
PropertyValue ReplaceCharactersAction::validateWith3(const PropertyValue& value) {
    return validateWith0(value);
}

PropertyValue ReplaceCharactersAction::validatedValue(const PropertyValue& value,
                                                      std::string_view key) const {
    if (key == "with0")
        return validateWith0(value);
    if (key == "with1")
        return validateWith1(value);
    if (key == "with2")
        return validateWith2(value);
    if (key == "with3")
        return validateWith3(value);
    return BaseRenameAction::validatedValue(value, key);
}

void ReplaceCharactersAction::prepareParameters() {
    BaseRenameAction::prepareParameters();
    for (std::size_t c = 0; c < rowOfAscii.size(); ++c)
        rowOfAscii[c] = findRow(std::u16string(1, static_cast<char16_t>(c)));
    rowOfOthers.clear();
}

std::int8_t ReplaceCharactersAction::findRow(std::u16string_view sequence) const {
    const auto place = std::find_if(rows.begin(), rows.end(), [&](const Row& row) {
        return !row.characters.empty() &&
               contains(row.characters, sequence, RenameActionHelper::sensitivity(row.ignoreCase));
    });
    return place == rows.end() ? noRow : static_cast<std::int8_t>(place - rows.begin());
}

std::int8_t ReplaceCharactersAction::rowOfSequence(std::u16string_view sequence) {
    if (sequence.size() == 1 && sequence.front() < rowOfAscii.size())
        return rowOfAscii[sequence.front()];
    constexpr std::size_t mostRemembered = 4096;
    const std::u16string key(sequence);
    if (const auto known = rowOfOthers.find(key); known != rowOfOthers.end())
        return known->second;
    if (rowOfOthers.size() >= mostRemembered)
        rowOfOthers.clear();
    return rowOfOthers.emplace(key, findRow(sequence)).first->second;
}

void ReplaceCharactersAction::append(std::u16string_view sequence, std::int8_t row,
                                     std::u16string& result) const {
    result += row == noRow ? sequence : rows[static_cast<std::size_t>(row)].with;
}

void ReplaceCharactersAction::processName(std::u16string_view fragment, const InputContext&, OutputContext&,
                                          std::u16string& result) {
    if (isPlain(fragment)) {
        for (std::size_t i = 0; i < fragment.size(); ++i)
            append(fragment.substr(i, 1), rowOfAscii[fragment[i]], result);
        return;
    }
    for (const auto sequence : text::composedSequences(fragment))
        append(sequence, rowOfSequence(sequence), result);
}

namespace {

class RemoveCharactersAction final : public ReplaceCharactersAction {
  public:
    static constexpr const char* name = "Remove characters";

    RemoveCharactersAction() {
        for (const auto& keys : rowKeys) {
            setDefault(keys[1], u"");
            hideParameter(keys[1]);
        }
    }
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"replaceCharacters0", u"[]()"}}, u"[draft] plan (2).txt", u"draft plan 2.txt"}};
    }
};

constexpr ActionEntry characterEntries[]{entryFor<ReplaceCharactersAction>(),
                                         entryFor<RemoveCharactersAction>()};

} // namespace

std::span<const ActionEntry> replaceCharactersActions() { return characterEntries; }

} // namespace tavrin
