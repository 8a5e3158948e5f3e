#include "actions/ActionFamilies.h"
#include "actions/PrecomposedText.h"
#include "actions/RenameActionHelper.h"
#include "actions/dates/RenameToDateAction.h"
#include "support/text/Text.h"
#include "support/text/TextSearch.h"

namespace tavrin {

namespace {

constexpr ExampleFile exampleFile{"", "2024-06-14 07:31:05", "", "", u""};

class AddDateToFrontAction final : public RenameToDateAction {
  public:
    static constexpr const char* name = "Add date to front";

    AddDateToFrontAction() {
        addParameter(checkboxParameter("trailingSpace", "Space between", 1, 1), paramTrailingSpace);
    }
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"mode", 1}, {"timePatternIndex", 0}}, u"plan.txt", u"2024-06-14 plan.txt", exampleFile}};
    }

  protected:
    void processName(std::u16string_view fragment, const InputContext& input, OutputContext&,
                     std::u16string& result) override {
        if (const auto text = dateText(fragment, input); text && *text != fragment)
            result.append(*text).append(paramTrailingSpace != 0 ? u" " : u"");
        result += fragment;
    }

  private:
    std::int32_t paramTrailingSpace = 1;
};

class AddDateToEndAction final : public RenameToDateAction {
  public:
    static constexpr const char* name = "Add date to end";

    AddDateToEndAction() {
        addParameter(checkboxParameter("leadingSpace", "Space between", 1, 1), paramLeadingSpace);
    }
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"mode", 1}, {"timePatternIndex", 0}}, u"plan.txt", u"plan 2024-06-14.txt", exampleFile}};
    }

  protected:
    void processName(std::u16string_view fragment, const InputContext& input, OutputContext&,
                     std::u16string& result) override {
        result += fragment;
        if (const auto text = dateText(fragment, input); text && *text != fragment)
            result.append(paramLeadingSpace != 0 ? u" " : u"").append(*text);
    }

  private:
    std::int32_t paramLeadingSpace = 1;
};

/// Like the two that follow it inserts the fragment into itself where an image has no shooting date.
class AddDateAtPositionAction final : public RenameToDateAction {
  public:
    static constexpr const char* name = "Add date at position";

    AddDateAtPositionAction() {
        addParameter(numberParameter("position", "At", 0, 0).between(0, 9999).in(PanelSection::placement),
                     paramPosition);
        addParameter(choiceParameter("mode2", "Counted", positionModeChoices(), 0, 0).beside("position"),
                     paramPositionMode);
    }
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"mode", 1}, {"datePatternIndex", 2}, {"timePatternIndex", 0}, {"position", 4}},
                 u"IMG_42.jpg",
                 u"IMG_2024061442.jpg",
                 exampleFile}};
    }

  protected:
    void processName(std::u16string_view fragment, const InputContext& input, OutputContext&,
                     std::u16string& result) override {
        RenameActionHelper::insertAtPosition(dateText(fragment, input), fragment, paramPosition,
                                             paramPositionMode, result);
    }

  private:
    std::int32_t paramPosition = 0;
    std::int32_t paramPositionMode = 0;
};

/// Inserts beside an occurrence of a text. Works on, and returns, form C.
class AddDateInFrontOfExistingTextAction : public RenameToDateAction {
  public:
    static constexpr const char* name = "Add date in front of existing text";

    AddDateInFrontOfExistingTextAction() {
        addParameter(textParameter("searchTerm", "Text to find"), paramSearchTerm);
        addParameter(choiceParameter("mode2", "Which one", occurrenceChoices(), 0, 0), paramOccurrence);
        addParameter(checkboxParameter("ignoreCase", "Ignore case", 1, 1), paramIgnoreCase);
    }
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"mode", 1}, {"timePatternIndex", 0}, {"searchTerm", u" plan"}},
                 u"The plan.txt",
                 u"The2024-06-14 plan.txt",
                 exampleFile}};
    }

  protected:
    void prepareParameters() override {
        RenameToDateAction::prepareParameters();
        search =
            TextSearch(text::precomposed(paramSearchTerm), RenameActionHelper::sensitivity(paramIgnoreCase));
    }

    void processName(std::u16string_view fragment, const InputContext& input, OutputContext&,
                     std::u16string& result) override {
        insert(dateText(fragment, input), PrecomposedText(fragment).view(), result);
    }

    virtual void insert(const std::optional<std::u16string>& text, std::u16string_view into,
                        std::u16string& result) const {
        RenameActionHelper::insertInFrontOfExistingText(text, into, search, paramOccurrence, result);
    }

    std::int32_t paramOccurrence = 0;
    TextSearch search;

  private:
    std::u16string paramSearchTerm;
    std::int32_t paramIgnoreCase = 1;
};

class AddDateAfterExistingTextAction final : public AddDateInFrontOfExistingTextAction {
  public:
    static constexpr const char* name = "Add date after existing text";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"mode", 1}, {"timePatternIndex", 0}, {"searchTerm", u"the "}},
                 u"The plan.txt",
                 u"The 2024-06-14plan.txt",
                 exampleFile}};
    }

  protected:
    void insert(const std::optional<std::u16string>& text, std::u16string_view into,
                std::u16string& result) const override {
        RenameActionHelper::insertAfterExistingText(text, into, search, paramOccurrence, result);
    }
};

constexpr ActionEntry entries[]{
    entryFor<RenameToDateAction>(),
    entryFor<AddDateToFrontAction>(),
    entryFor<AddDateToEndAction>(),
    entryFor<AddDateAtPositionAction>(),
    entryFor<AddDateInFrontOfExistingTextAction>(),
    entryFor<AddDateAfterExistingTextAction>(),
};

} // namespace

std::span<const ActionEntry> dateActions() { return entries; }

} // namespace tavrin
