#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"
#include "actions/PrecomposedText.h"
#include "actions/TextPlacement.h"
#include "support/text/Text.h"
#include "support/text/TextSearch.h"

#include <array>

namespace tavrin {

namespace {

constexpr std::array<ParameterChoice, 13> replacementModes{{
    {0, "All"},
    {1, "First"},
    {2, "Second"},
    {3, "Third"},
    {4, "Fourth"},
    {5, "Fifth"},
    {6, "Sixth"},
    {7, "Last"},
    {8, "Second to last"},
    {9, "Third to last"},
    {10, "Fourth to last"},
    {11, "Fifth to last"},
    {12, "Sixth to last"},
}};

constexpr std::array<std::string_view, 13> occurencePhrases{
    "all occurences of ",
    "only the first occurence of ",
    "only the second occurence of ",
    "only the third occurence of ",
    "only the fourth occurence of ",
    "only the fifth occurence of ",
    "only the sixth occurence of ",
    "only the last occurence of ",
    "only the second to last occurence of ",
    "only the third to last occurence of ",
    "only the forth to last occurence of ",
    "only the fifth to last occurence of ",
    "only the sixth to last occurence of ",
};

/// Replaces some or all occurrences of a text. Works on, and returns, form C.
class ReplaceTextAction : public BaseRenameAction {
  public:
    ReplaceTextAction() {
        addParameter(textParameter("searchTerm", "Find"), paramSearchTerm);
        addParameter(textParameter("replacementTerm", "Replace with"), paramReplacementTerm);
        addParameter(choiceParameter("replacementMode", "Occurrences", replacementModes, 0),
                     paramReplacementMode);
        addParameter(checkboxParameter("ignoreCase", "Ignore case", 1), paramIgnoreCase);
    }
    [[nodiscard]] std::u16string explanation() const override { return sentence(u"Replace "); }

  protected:
    /// A sentence about the parameters; empty while there is no text to look for.
    [[nodiscard]] std::u16string sentence(std::u16string_view verb) const {
        const std::u16string term = getParamString("searchTerm");
        if (term.empty())
            return {};
        return std::u16string(verb) + text::fromUtf8(userDescriptionOccurence()) + u'\u201C' + term +
               u'\u201D' + text::fromUtf8(userDescriptionIgnore());
    }

    void prepareParameters() override {
        BaseRenameAction::prepareParameters();
        search = TextSearch(text::precomposed(paramSearchTerm), caseSensitivity(paramIgnoreCase));
    }

    void processName(std::u16string_view fragment, std::u16string& result) override;

  private:
    [[nodiscard]] std::string_view userDescriptionOccurence() const {
        const auto mode = static_cast<std::size_t>(getParamInt("replacementMode", 0));
        return mode < occurencePhrases.size() ? occurencePhrases[mode] : "";
    }
    [[nodiscard]] std::string_view userDescriptionIgnore() const {
        return getParamInt("ignoreCase", 1) == 1 ? " while ignoring case." : ".";
    }
    [[nodiscard]] bool shouldReplaceCurrentOccurence(std::int64_t index, std::int64_t outOf) const {
        const std::int64_t mode = paramReplacementMode;
        if (mode == 0)
            return true;
        return mode <= 6 ? index == mode - 1 : index == outOf + 6 - mode;
    }
    void collectMatches(std::u16string_view text);

    std::u16string paramSearchTerm;
    std::u16string paramReplacementTerm;
    std::int32_t paramReplacementMode = 0;
    std::int32_t paramIgnoreCase = 1;
    TextSearch search;
    std::vector<TextRange> matches; ///< of the name in hand
};

void ReplaceTextAction::collectMatches(std::u16string_view text) {
    matches.clear();
    std::size_t start = 0;
    while (start < text.size()) {
        const auto match = search.first(text, {start, text.size() - start});
        if (!match)
            break;
        matches.push_back(*match);
        start = match->end();
    }
}

void ReplaceTextAction::processName(std::u16string_view fragment, std::u16string& result) {
    const PrecomposedText composed(fragment);
    const auto text = composed.view();
    collectMatches(text);
    const auto count = static_cast<std::int64_t>(matches.size());
    std::size_t done = 0;
    for (std::int64_t i = 0; i < count; ++i) {
        const auto& match = matches[static_cast<std::size_t>(i)];
        if (!shouldReplaceCurrentOccurence(i, count))
            continue;
        result.append(text, done, match.location - done).append(paramReplacementTerm);
        done = match.end();
    }
    result.append(text, done);
}

class RemoveTextAction final : public ReplaceTextAction {
  public:
    RemoveTextAction() { hideParameter("replacementTerm"); }
    [[nodiscard]] std::u16string explanation() const override { return sentence(u"Remove "); }
};

} // namespace

std::vector<ActionEntry> replaceTextActions() {
    return {
        {"Replace text",
         "Replace text",
         ActionCategory::replace,
         newAction<ReplaceTextAction>,
         {{{{"searchTerm", u"IMG_"}, {"replacementTerm", u"Lofoten "}}, u"IMG_4021.JPG", u"Lofoten 4021.JPG"},
          {{{"searchTerm", u"a"}, {"replacementTerm", u"o"}, {"replacementMode", 8}},
           u"banana.txt",
           u"banona.txt"}}},
        {"Remove text",
         "Remove text",
         ActionCategory::remove,
         newAction<RemoveTextAction>,
         {{{{"searchTerm", u" copy"}}, u"letter copy.txt", u"letter.txt"}}},
    };
}

} // namespace tavrin
