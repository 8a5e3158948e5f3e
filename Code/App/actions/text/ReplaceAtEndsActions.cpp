#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"
#include "actions/PrecomposedText.h"
#include "actions/TextPlacement.h"
#include "support/text/Text.h"
#include "support/text/TextSearch.h"

namespace tavrin {

namespace {

/// Replaces a text with which the fragment begins. Works on, and returns, form C. The range looked at is as
/// long as the text sought, and goes as a whole where the text is found in it.
class ReplaceAtFrontAction : public FragmentAction {
  public:
    explicit ReplaceAtFrontAction(std::string_view label = "If the name starts with") {
        addParameter(textParameter("replace", label).first(), paramReplace);
        addParameter(textParameter("with", "Replace it by").first(), paramWith);
        addParameter(checkboxParameter("ignoreCase", "Ignore case", 1).alone("case"), paramIgnoreCase);
    }

  protected:
    void prepareParameters() override {
        BaseRenameAction::prepareParameters();
        search = TextSearch(text::precomposed(paramReplace), caseSensitivity(paramIgnoreCase));
    }

    void processName(std::u16string_view fragment, std::u16string& result) override {
        const PrecomposedText composed(fragment);
        const auto text = composed.view();
        const auto length = search.text().size();
        if (length <= text.size() && replaceIn(text, length, result))
            return;
        result += text;
    }

    /// Appends the new text if the text sought, of this length, stands where it should.
    [[nodiscard]] virtual bool replaceIn(std::u16string_view text, std::size_t length,
                                         std::u16string& result) const {
        if (!search.first(text, {0, length}))
            return false;
        result.append(paramWith).append(text, length);
        return true;
    }

    TextSearch search;
    std::u16string paramWith;

  private:
    std::u16string paramReplace;
    std::int32_t paramIgnoreCase = 1;
};

class ReplaceAtEndAction : public ReplaceAtFrontAction {
  public:
    explicit ReplaceAtEndAction(std::string_view label = "If the name ends with")
        : ReplaceAtFrontAction(label) {}

  protected:
    [[nodiscard]] bool replaceIn(std::u16string_view text, std::size_t length,
                                 std::u16string& result) const override {
        const auto start = text.size() - length;
        if (!search.first(text, {start, length}))
            return false;
        result.append(text, 0, start).append(paramWith);
        return true;
    }
};

/// The same with nothing to put in.
template <typename Replacing> class RemoveTextAtAnEndAction final : public Replacing {
  public:
    RemoveTextAtAnEndAction() : Replacing("Text") { this->hideParameter("with"); }
};

} // namespace

std::vector<ActionEntry> replaceAtEndsActions() {
    return {
        {"Replace at front",
         "Replace at start",
         {"replace", Place::start},
         ActionCategory::replace,
         newAction<ReplaceAtFrontAction>,
         {{{{"replace", u"dsc"}, {"with", u"Photo "}}, u"DSC042.jpg", u"Photo 042.jpg"}}},
        {"Replace at end",
         "Replace at end",
         {"replace", Place::end},
         ActionCategory::replace,
         newAction<ReplaceAtEndAction>,
         {{{{"replace", u"draft"}, {"with", u"final"}}, u"plan draft.txt", u"plan final.txt"}}},
        {"Remove text at front",
         "Remove text at start",
         {"remove", Place::start},
         ActionCategory::remove,
         newAction<RemoveTextAtAnEndAction<ReplaceAtFrontAction>>,
         {{{{"replace", u"Copy of "}}, u"Copy of letter.txt", u"letter.txt"}}},
        {"Remove text at end",
         "Remove text at end",
         {"remove", Place::end},
         ActionCategory::remove,
         newAction<RemoveTextAtAnEndAction<ReplaceAtEndAction>>,
         {{{{"replace", u" copy"}}, u"letter copy.txt", u"letter.txt"}}},
    };
}

} // namespace tavrin
