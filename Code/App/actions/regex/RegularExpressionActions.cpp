#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"
#include "actions/PrecomposedText.h"
#include "support/application/DebugLog.h"
#include "support/text/RegularExpression.h"

namespace tavrin {

namespace {

/// What both actions on regular expressions share. A pattern that is refused or takes too long for a name
/// stops nothing and leaves a line in the debug log.
class ExpressionAction : public BaseRenameAction {
  public:
    [[nodiscard]] std::string failure() const override {
        return paramSearchPattern.empty() ? std::string() : expression.failure();
    }

  protected:
    explicit ExpressionAction(std::string_view labelOfReplacement) {
        addParameter(textParameter("searchPattern", "Pattern").first(), paramSearchPattern);
        addParameter(textParameter("replacementTerm", labelOfReplacement).first(), paramReplacementTerm);
        addParameter(checkboxParameter("ignoreCase", "Ignore case", 1).alone("case"), paramIgnoreCase);
    }

    void prepareParameters() override {
        BaseRenameAction::prepareParameters();
        // Any value but 0, unlike in the actions that look for a plain text.
        expression = RegularExpression(paramSearchPattern, paramIgnoreCase != 0 ? CaseSensitivity::insensitive
                                                                                : CaseSensitivity::sensitive);
        replacement = text::precomposed(paramReplacementTerm);
    }

    void logFailureIfAny() const {
        if (debugLogIsOn())
            if (const auto failure = expression.failure(); !failure.empty())
                debugLog("exception: {}", failure);
    }

    std::u16string paramReplacementTerm;
    RegularExpression expression;
    std::u16string replacement; ///< in form C

  private:
    std::u16string paramSearchPattern;
    std::int32_t paramIgnoreCase = 1;
};

/// Replaces all occurrences of a text; false, with nothing done, where the result would be too long to be a
/// name: a name that holds what stands for groups could make it grow without end.
bool replaceEverywhere(std::u16string& text, std::u16string_view part, std::u16string_view with) {
    std::size_t count = 0;
    for (auto at = text.find(part); at != text.npos; at = text.find(part, at + part.size()))
        ++count;
    if (count == 0)
        return true;
    if (text.size() + count * with.size() > RegularExpression::mostUnits)
        return false;
    std::u16string replaced;
    std::size_t done = 0;
    for (auto at = text.find(part); count > 0; --count, at = text.find(part, done)) {
        replaced.append(text, done, at - done).append(with);
        done = at + part.size();
    }
    replaced.append(text, done);
    text.swap(replaced);
    return true;
}

/// Builds the whole new fragment out of a template with the groups of the first match.
class RegExAction final : public ExpressionAction {
  public:
    RegExAction() : ExpressionAction("New name") {}
    [[nodiscard]] std::string_view helpAnchor() const override { return "helpTopic61"; }

  protected:
    void prepareParameters() override {
        ExpressionAction::prepareParameters();
        references.clear();
        for (std::size_t group = 0; group <= lastGroup; ++group) {
            for (const char16_t mark : {u'\\', u'$'}) {
                const std::u16string reference{mark, static_cast<char16_t>(u'0' + group)};
                // Those of the whole match are replaced even where only another replacement brings them in.
                if (group == 0 || paramReplacementTerm.find(reference) != paramReplacementTerm.npos)
                    references.push_back({group, reference});
            }
        }
    }

    void processName(std::u16string_view fragment, std::u16string& result) override {
        const PrecomposedText composed(fragment);
        const auto groups = expression.captureComponentsMatched(composed.view());
        publish(groups, answer());
        logFailureIfAny();
        if (!groups.empty() && !groups[0].empty() && fillTemplate(groups) && !filled.empty())
            result += filled;
        else
            result += fragment;
    }

  private:
    static constexpr std::size_t lastGroup = 8;
    struct Reference {
        std::size_t group;
        std::u16string text;
    };
    using Groups = std::span<const std::u16string_view>;

    static void publish(Groups groups, OutputContext& output) {
        auto& columns = output.regex ? *output.regex : output.regex.emplace();
        for (std::size_t i = 0; i < columns.size(); ++i)
            columns[i].assign(i + 1 < groups.size() ? groups[i + 1] : std::u16string_view());
    }

    /// In sequence, so that a group can bring in what a later one replaces.
    [[nodiscard]] bool fillTemplate(Groups groups) {
        filled.assign(replacement);
        for (const auto& [group, reference] : references)
            if (group >= groups.size() || !replaceEverywhere(filled, reference, groups[group]))
                return false;
        return true;
    }

    std::vector<Reference> references; ///< those to look for, in the order of their replacement
    std::u16string filled;
};

/// Replaces some or all matches in place; never gives an empty fragment.
class RegExReplacementAction final : public ExpressionAction {
  public:
    RegExReplacementAction() : ExpressionAction("Replace with") {
        addParameter(choiceParameter("replacementMode", "Occurrences", replacementModeChoices(), 0).alone(),
                     paramReplacementMode);
    }
    [[nodiscard]] std::string_view helpAnchor() const override { return "helpTopic60"; }

  protected:
    void processName(std::u16string_view fragment, std::u16string& result) override {
        const auto start = result.size();
        const PrecomposedText composed(fragment);
        if (!expression.replaceOccurrences(composed.view(), replacement, result, paramReplacementMode)) {
            logFailureIfAny();
            result += composed.view();
        }
        if (result.size() == start)
            result += fragment;
    }

  private:
    std::int32_t paramReplacementMode = 0;
};

} // namespace

std::vector<ActionEntry> regularExpressionActions() {
    constexpr auto category = ActionCategory::replace;
    return {
        {"Reg Ex Replacement",
         "Regular expression: replace matches",
         {"regex", Place::wholeName, 's'},
         category,
         newAction<RegExReplacementAction>,
         {{{{"searchPattern", u"[ _]+"}, {"replacementTerm", u"-"}},
           u"my holiday__photo.jpg",
           u"my-holiday-photo.jpg"},
          {{{"searchPattern", u"(\\d{4})(\\d\\d)"}, {"replacementTerm", u"$2.$1"}},
           u"scan 202406.pdf",
           u"scan 06.2024.pdf"},
          {{{"searchPattern", u"\\d+"}, {"replacementTerm", u"X"}, {"replacementMode", 7}},
           u"12 of 34.pdf",
           u"12 of X.pdf"}}},
        {"Reg Ex Substitution",
         "Regular expression: build new name",
         {"match", Place::wholeName, 'm'},
         category,
         newAction<RegExAction>,
         {{{{"searchPattern", u"(\\d+)-(\\d+)"}, {"replacementTerm", u"$2_$1"}},
           u"x12-34y.txt",
           u"34_12.txt"}},
         u"$1 to $8 stand for groups; text outside the match is dropped. The list shows groups 1 to 6."},
    };
}

} // namespace tavrin
