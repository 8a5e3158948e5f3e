#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"
#include "actions/PrecomposedText.h"
#include "actions/TextPlacement.h"
#include "support/text/Text.h"
#include "support/text/TextSearch.h"

#include <array>

namespace tavrin {

namespace {

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
class ReplaceTextAction : public FragmentAction {
  public:
    ReplaceTextAction() {
        addParameter(textParameter("searchTerm", "Find").first(), paramSearchTerm);
        addParameter(textParameter("replacementTerm", "Replace with").first(), paramReplacementTerm);
        addParameter(choiceParameter("replacementMode", "Occurrences", replacementModeChoices(), 0).alone(),
                     paramReplacementMode);
        addParameter(checkboxParameter("ignoreCase", "Ignore case", 1).alone("case"), paramIgnoreCase);
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
        if (!isOccurrenceMeant(paramReplacementMode, i, count))
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
         {"replace"},
         ActionCategory::replace,
         newAction<ReplaceTextAction>,
         {{{{"searchTerm", u"IMG_"}, {"replacementTerm", u"Lofoten "}}, u"IMG_4021.JPG", u"Lofoten 4021.JPG"},
          {{{"searchTerm", u"a"}, {"replacementTerm", u"o"}, {"replacementMode", 8}},
           u"banana.txt",
           u"banona.txt"}}},
        {"Remove text",
         "Remove text",
         {"remove"},
         ActionCategory::remove,
         newAction<RemoveTextAction>,
         {{{{"searchTerm", u" copy"}}, u"letter copy.txt", u"letter.txt"}}},
    };
}

} // namespace tavrin
