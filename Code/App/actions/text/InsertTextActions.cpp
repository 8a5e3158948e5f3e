#include "actions/ActionFamilies.h"
#include "actions/PrecomposedText.h"
#include "actions/RenameActionHelper.h"
#include "actions/text/AddToBeginningAction.h"
#include "support/text/Text.h"
#include "support/text/TextSearch.h"

namespace tavrin {

AddToBeginningAction::AddToBeginningAction() { addParameter(textParameter("string", "Text"), paramString); }

std::vector<ActionExample> AddToBeginningAction::examples() const {
    return {{{{"string", u"2024 "}}, u"report.txt", u"2024 report.txt"}};
}

void AddToBeginningAction::processName(std::u16string_view fragment, const InputContext&, OutputContext&,
                                       std::u16string& result) {
    result.append(paramString).append(fragment);
}

namespace {

class AddToEndAction final : public BaseRenameAction {
  public:
    static constexpr const char* name = "Add to end";

    AddToEndAction() { addParameter(textParameter("string", "Text"), paramString); }
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"string", u" (old)"}}, u"report.txt", u"report (old).txt"}};
    }

  protected:
    void processName(std::u16string_view fragment, const InputContext&, OutputContext&,
                     std::u16string& result) override {
        result.append(fragment).append(paramString);
    }

  private:
    std::u16string paramString;
};

/// Gives every fragment the same text.
class CompletelyReplaceAction final : public BaseRenameAction {
  public:
    static constexpr const char* name = "Completely rename";

    CompletelyReplaceAction() { addParameter(textParameter("newName", "New name"), paramNewName); }
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"newName", u"Holiday"}}, u"IMG_4021.JPG", u"Holiday.JPG"}};
    }
    [[nodiscard]] std::u16string explanation() const override {
        return u"Equal names are made distinct as set in Preferences.";
    }

  protected:
    void processName(std::u16string_view, const InputContext&, OutputContext&,
                     std::u16string& result) override {
        result += paramNewName;
    }

  private:
    std::u16string paramNewName;
};

class InsertAtPosition final : public BaseRenameAction {
  public:
    static constexpr const char* name = "Insert at position";

    InsertAtPosition() {
        addParameter(textParameter("text", "Text"), paramText);
        addParameter(numberParameter("position", "At", 0, 0).between(0, 9999), paramPosition);
        addParameter(choiceParameter("mode", "Counted", positionModeChoices(), 0, 0).beside("position"),
                     paramMode);
    }
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"text", u"-"}, {"position", 4}}, u"20240614.jpg", u"2024-0614.jpg"},
                {{{"text", u"-"}, {"position", 2}, {"mode", 1}}, u"20240614.jpg", u"202406-14.jpg"}};
    }

  protected:
    void processName(std::u16string_view fragment, const InputContext&, OutputContext&,
                     std::u16string& result) override {
        RenameActionHelper::insertAtPosition(paramText, fragment, paramPosition, paramMode, result);
    }

  private:
    std::u16string paramText;
    std::int32_t paramPosition = 0;
    std::int32_t paramMode = 0;
};

/// Inserts beside an occurrence of a text. Works on, and returns, form C.
class InsertInFrontOfTextAction : public BaseRenameAction {
  public:
    static constexpr const char* name = "Insert in front of text";

    InsertInFrontOfTextAction() {
        addParameter(textParameter("text", "Text"), paramText);
        addParameter(textParameter("searchTerm", "Text to find"), paramSearchTerm);
        addParameter(choiceParameter("mode", "Which one", occurrenceChoices(), 0, 0), paramMode);
        addParameter(checkboxParameter("ignoreCase", "Ignore case", 1, 1), paramIgnoreCase);
    }
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"text", u"new "}, {"searchTerm", u"plan"}}, u"my plan.txt", u"my new plan.txt"}};
    }

  protected:
    void prepareParameters() override {
        BaseRenameAction::prepareParameters();
        search =
            TextSearch(text::precomposed(paramSearchTerm), RenameActionHelper::sensitivity(paramIgnoreCase));
    }

    void processName(std::u16string_view fragment, const InputContext&, OutputContext&,
                     std::u16string& result) override {
        insert(PrecomposedText(fragment).view(), result);
    }

    virtual void insert(std::u16string_view into, std::u16string& result) const {
        RenameActionHelper::insertInFrontOfExistingText(paramText, into, search, paramMode, result);
    }

    std::u16string paramText;
    std::int32_t paramMode = 0;
    TextSearch search;

  private:
    std::u16string paramSearchTerm;
    std::int32_t paramIgnoreCase = 1;
};

/// Despite its name it inserts behind the found text.
class InsertAtEndOfTextAction final : public InsertInFrontOfTextAction {
  public:
    static constexpr const char* name = "Insert at end of text";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"text", u"X"}, {"searchTerm", u"b"}, {"mode", 6}}, u"abcabc.txt", u"abcabXc.txt"}};
    }

  protected:
    void insert(std::u16string_view into, std::u16string& result) const override {
        RenameActionHelper::insertAfterExistingText(paramText, into, search, paramMode, result);
    }
};

constexpr ActionEntry entries[]{
    entryFor<AddToBeginningAction>(),      entryFor<AddToEndAction>(),
    entryFor<CompletelyReplaceAction>(),   entryFor<InsertAtPosition>(),
    entryFor<InsertInFrontOfTextAction>(), entryFor<InsertAtEndOfTextAction>(),
};

} // namespace

std::span<const ActionEntry> insertTextActions() { return entries; }

} // namespace tavrin
