#include "presentation/settings/PanelRows.h"

#include "actions/BaseRenameAction.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tavrin {

namespace {

/// Parameters that follow another one in its row.
constexpr std::array<std::pair<std::string_view, std::string_view>, 16> joined{{
    {"position", "mode"},
    {"position", "mode2"},
    {"fromPosition", "fromWhichEndOfPosition"},
    {"toPositionNumber", "toWhichEndOfPosition"},
    {"removeNumberOfCharacters", "removeNumberOfCharactersFromWhichEnd"},
    {"operationMode", "operand"},
    {"replaceCharacters0", "with0"},
    {"replaceCharacters0", "ignoreCase0"},
    {"replaceCharacters1", "with1"},
    {"replaceCharacters1", "ignoreCase1"},
    {"replaceCharacters2", "with2"},
    {"replaceCharacters2", "ignoreCase2"},
    {"replaceCharacters3", "with3"},
    {"replaceCharacters3", "ignoreCase3"},
    {"listFilePath", "status"},
    {"startValue", "stepValue"},
}};

/// The order of the run, in the order of its rows.
constexpr std::array<std::string_view, 3> orderKeys{"sortingMode", "sortingMode2",
                                                    "sortEachFolderSeparately"};

/// Chosen elsewhere, or a mark that nobody chooses.
constexpr std::array<std::string_view, 3> neverShown{"active", "fragmentSelection", "version"};

struct Unused {
    std::string_view actions; ///< how the names begin
    std::string_view key;
};

/// Kept in the parameters, without effect.
constexpr std::array unused{
    Unused{"Insert number at position", "prefix"},
    Unused{"Insert number at position", "suffix"},
    Unused{"Insert alphabetical sequence at position", "prefix"},
    Unused{"Insert alphabetical sequence at position", "suffix"},
    Unused{"Insert roman numeral at position", "prefix"},
    Unused{"Insert roman numeral at position", "suffix"},
    Unused{"Add path components", "leadingSpace"},
    Unused{"Add path components", "trailingSpace"},
    Unused{"Produce roman numeral list", "padding"},
    Unused{"Add roman numeral", "padding"},
    Unused{"Insert roman numeral", "padding"},
    Unused{"Remove characters", "with"},
    Unused{"Remove text", "replacementTerm"},
    Unused{"Remove text", "with"},
};

/// Heads of sections, by the first parameter below them.
constexpr std::array<std::pair<std::string_view, std::string_view>, 3> heads{{
    {"fromMode", "From"},
    {"toMode", "To"},
    {"sortingMode", "Order"},
}};

bool isShown(const BaseRenameAction& action, std::string_view key) {
    if (std::ranges::find(neverShown, key) != neverShown.end())
        return false;
    const std::string name = action.actionName();
    return std::ranges::none_of(unused, [&](const Unused& each) {
        return name.starts_with(each.actions) &&
               (key == each.key || (each.key == "with" && key.starts_with("with")));
    });
}

bool isOrderKey(std::string_view key) { return std::ranges::find(orderKeys, key) != orderKeys.end(); }

bool joins(std::string_view key, const PanelRow& row) {
    return std::ranges::find(joined, std::pair(row.first().key, key)) != joined.end();
}

void append(std::vector<PanelRow>& rows, const ParameterDescription& parameter) {
    // Where the two ends of a table lie apart, the row is found all the same.
    const auto row =
        std::ranges::find_if(rows, [&](const PanelRow& each) { return joins(parameter.key, each); });
    if (row != rows.end()) {
        row->parameters.push_back(&parameter);
        return;
    }
    const auto head =
        std::ranges::find(heads, parameter.key, &std::pair<std::string_view, std::string_view>::first);
    rows.push_back({{&parameter}, head == heads.end() ? std::string_view() : head->second});
}

} // namespace

std::vector<PanelRow> panelRowsOf(const BaseRenameAction& action) {
    std::vector<PanelRow> rows;
    for (const ParameterDescription& parameter : action.parameters())
        if (isShown(action, parameter.key) && !isOrderKey(parameter.key))
            append(rows, parameter);
    for (const std::string_view key : orderKeys) {
        const auto parameters = action.parameters();
        const auto found = std::ranges::find(parameters, key, &ParameterDescription::key);
        if (found != parameters.end())
            append(rows, *found);
    }
    return rows;
}

std::string_view panelRemarkOf(std::string_view actionName) {
    static constexpr std::array<std::pair<std::string_view, std::string_view>, 5> remarks{{
        {"Remove vowels", "Removes a, e, i, o, u and y."},
        {"Completely rename", "Equal names are made distinct as set in Preferences."},
        {"Reg Ex Substitution",
         "$1 to $8 stand for groups; text outside the match is dropped. The list shows "
         "groups 1 to 6."},
        {"Remove trailing spaces", "Removes blanks at the end of the name."},
        {"Fold String", "Removes accents and other marks from letters."},
    }};
    if (actionName.find("MP3") != std::string_view::npos)
        return "The first pattern for which a file has all tags is used.";
    const auto found =
        std::ranges::find(remarks, actionName, &std::pair<std::string_view, std::string_view>::first);
    return found == remarks.end() ? std::string_view() : found->second;
}

int shownOffsetOf(std::string_view key) { return key == "levels" ? 1 : 0; }

} // namespace tavrin
