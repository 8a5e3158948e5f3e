#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"
#include "actions/PrecomposedText.h"
#include "actions/TextPlacement.h"

namespace tavrin {

namespace {

/// Puts a text of the user into the name. Beside an existing text it works on, and returns, form C.
class InsertTextAction final : public FragmentAction {
  public:
    InsertTextAction(Place place, const char* key, const char* label) : placement(place) {
        addParameter(textParameter(key, label).first(), text);
        placement.addParametersTo(*this);
    }

  protected:
    void prepareParameters() override {
        BaseRenameAction::prepareParameters();
        placement.prepareParameters();
    }

    void processName(std::u16string_view fragment, std::u16string& result) override {
        if (placement.isBesideText())
            placement.put(text, PrecomposedText(fragment).view(), result);
        else
            placement.put(text, fragment, result);
    }

  private:
    std::u16string text;
    TextPlacement placement;
};

template <Place place> std::unique_ptr<BaseRenameAction> addition() {
    return std::make_unique<InsertTextAction>(place, "string", "Text");
}

template <Place place> std::unique_ptr<BaseRenameAction> insertion() {
    return std::make_unique<InsertTextAction>(place, "text", "Text");
}

std::unique_ptr<BaseRenameAction> replacement() {
    return std::make_unique<InsertTextAction>(Place::wholeName, "newName", "New name");
}

} // namespace

std::vector<ActionEntry> insertTextActions() {
    constexpr auto category = ActionCategory::text;
    return {
        {"Add to front",
         "Add text to start",
         {"add", Place::start},
         category,
         addition<Place::start>,
         {{{{"string", u"2024 "}}, u"report.txt", u"2024 report.txt"}}},
        {"Add to end",
         "Add text to end",
         {"add", Place::end},
         category,
         addition<Place::end>,
         {{{{"string", u" (old)"}}, u"report.txt", u"report (old).txt"}}},
        {"Insert at position",
         "Insert text at position",
         {"add", Place::position},
         category,
         insertion<Place::position>,
         {{{{"text", u"-"}, {"position", 4}}, u"20240614.jpg", u"2024-0614.jpg"},
          {{{"text", u"-"}, {"position", 2}, {"mode", 1}}, u"20240614.jpg", u"202406-14.jpg"}}},
        {"Insert in front of text",
         "Insert text before text",
         {"add", Place::beforeText},
         category,
         insertion<Place::beforeText>,
         {{{{"text", u"new "}, {"searchTerm", u"plan"}}, u"my plan.txt", u"my new plan.txt"}}},
        // Despite its name it inserts behind the found text.
        {"Insert at end of text",
         "Insert text after text",
         {"add", Place::afterText},
         category,
         insertion<Place::afterText>,
         {{{{"text", u"X"}, {"searchTerm", u"b"}, {"mode", 6}}, u"abcabc.txt", u"abcabXc.txt"}}},
        {"Completely rename",
         "Same name for all",
         {"set"},
         category,
         replacement,
         {{{{"newName", u"Holiday"}}, u"IMG_4021.JPG", u"Holiday.JPG"}},
         u"Equal names are made distinct as set in Preferences."},
    };
}

} // namespace tavrin
