#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"
#include "actions/TextPlacement.h"
#include "support/text/TextSearch.h"

namespace tavrin {

namespace {

/// Moves the first occurrence of a text to another place, in the spelling that it has in the name.
class MoveTextAction final : public FragmentAction {
  public:
    explicit MoveTextAction(Place place) : placement(place) {
        addParameter(textParameter("text", "Text to move").first(), text);
        addParameter(checkboxParameter("ignoreCase", "Ignore case", 1).alone("case"), ignoreCase);
        placement.addParametersTo(*this, "mode", "ignoreCaseOfInsertionStrategy");
    }

  protected:
    void prepareParameters() override {
        BaseRenameAction::prepareParameters();
        placement.prepareParameters();
        search =
            TextSearch(text, ignoreCase != 0 ? CaseSensitivity::insensitive : CaseSensitivity::sensitive);
    }

    void processName(std::u16string_view fragment, std::u16string& result) override {
        const auto match = search.first(fragment);
        if (!match) {
            result += fragment;
            return;
        }
        const auto start = result.size();
        rest.assign(fragment, 0, match->location).append(fragment, match->end());
        placement.put(fragment.substr(match->location, match->length), rest, result);
        // A move keeps the length of the name. Another length means that there is no such place and that the
        // text would get lost; with a position that is what is asked for.
        if (placement.isBesideText() && result.size() - start != fragment.size()) {
            result.resize(start);
            result += fragment;
        }
    }

  private:
    std::u16string text;
    std::int32_t ignoreCase = 1;
    TextSearch search;
    std::u16string rest; ///< the name in hand without the text
    TextPlacement placement;
};

} // namespace

std::vector<ActionEntry> moveTextActions() {
    constexpr auto category = ActionCategory::move;
    return {
        {"Move text to front",
         "Move text to start",
         {"move", Place::start},
         category,
         newAction<MoveTextAction, Place::start>,
         {{{{"text", u"2024-"}}, u"report 2024-06.txt", u"2024-report 06.txt"}}},
        {"Move text to end",
         "Move text to end",
         {"move", Place::end},
         category,
         newAction<MoveTextAction, Place::end>,
         {{{{"text", u"draft"}}, u"Draft plan.txt", u" planDraft.txt"}}},
        {"Move text to position",
         "Move text to position",
         {"move", Place::position},
         category,
         newAction<MoveTextAction, Place::position>,
         {{{{"text", u"-b"}, {"position", 1}}, u"ac-b.txt", u"a-bc.txt"}}},
        {"Move text in front of existing text",
         "Move text before text",
         {"move", Place::beforeText},
         category,
         newAction<MoveTextAction, Place::beforeText>,
         {{{{"text", u"2024 "}, {"searchTerm", u"plan"}}, u"the plan 2024 x.txt", u"the 2024 plan x.txt"}}},
        {"Move text after existing text",
         "Move text after text",
         {"move", Place::afterText},
         category,
         newAction<MoveTextAction, Place::afterText>,
         {{{{"text", u"2024 "}, {"searchTerm", u"plan "}}, u"2024 plan x.txt", u"plan 2024 x.txt"}}},
    };
}

} // namespace tavrin
