#include "actions/ActionFamilies.h"
#include "actions/moving/ContentBasedAction.h"
#include "actions/moving/InsertionStrategies.h"
#include "support/text/TextSearch.h"

namespace tavrin {

namespace {

/// Cuts the first occurrence of a text out of the name, in the spelling that it has there.
class MoveTextContentStrategy final : public ContentStrategy {
  public:
    void addParametersTo(ContentBasedAction& action) override {
        action.addParameter(textParameter("text", "Text to move"), text);
        action.addParameter(checkboxParameter("ignoreCase", "Ignore case", 1, 1), ignoreCase);
    }

    void prepareParameters() override {
        search =
            TextSearch(text, ignoreCase != 0 ? CaseSensitivity::insensitive : CaseSensitivity::sensitive);
    }

    [[nodiscard]] std::optional<std::u16string_view> processName(std::u16string_view name,
                                                                 StrategyContext& context) override {
        const auto match = search.first(name);
        if (!match)
            return std::nullopt;
        rest.assign(name, 0, match->location).append(name, match->end());
        context.textAsFound = name.substr(match->location, match->length);
        context.nameMinusText = rest;
        return rest;
    }

  private:
    std::u16string text;
    std::int32_t ignoreCase = 1;
    TextSearch search;
    std::u16string rest; ///< the name in hand without the text
};

class MoveTextAction : public ContentBasedAction {
  protected:
    explicit MoveTextAction(std::unique_ptr<InsertionStrategy> insertion)
        : ContentBasedAction(std::make_unique<MoveTextContentStrategy>(),
                             std::make_unique<TranspositionInsertionStrategyAdapter>(std::move(insertion))) {}
};

class MoveTextToFrontAction final : public MoveTextAction {
  public:
    static constexpr const char* name = "Move text to front";

    MoveTextToFrontAction() : MoveTextAction(std::make_unique<AddAtFrontInsertionStrategy>()) {}
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"text", u"2024-"}}, u"report 2024-06.txt", u"2024-report 06.txt"}};
    }
};

class MoveTextToEndAction final : public MoveTextAction {
  public:
    static constexpr const char* name = "Move text to end";

    MoveTextToEndAction() : MoveTextAction(std::make_unique<AddToEndInsertionStrategy>()) {}
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"text", u"draft"}}, u"Draft plan.txt", u" planDraft.txt"}};
    }
};

class MoveTextToPositionAction final : public MoveTextAction {
  public:
    static constexpr const char* name = "Move text to position";

    MoveTextToPositionAction() : MoveTextAction(std::make_unique<PositionInsertionStrategy>()) {}
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"text", u"-b"}, {"position", 1}}, u"ac-b.txt", u"a-bc.txt"}};
    }
};

constexpr const char* ignoreCaseOfPlace = "ignoreCaseOfInsertionStrategy";

/// A move keeps the length of the name. Another length means that the place was not found and that the moved
/// text would get lost: then the name stays.
class MoveBesideTextAction : public MoveTextAction {
  protected:
    using MoveTextAction::MoveTextAction;

    void processName(std::u16string_view fragment, const InputContext& input, OutputContext& output,
                     std::u16string& result) override {
        const auto start = result.size();
        MoveTextAction::processName(fragment, input, output, result);
        if (result.size() - start != fragment.size()) {
            result.resize(start);
            result += fragment;
        }
    }
};

class MoveTextInFrontOfExistingTextAction final : public MoveBesideTextAction {
  public:
    static constexpr const char* name = "Move text in front of existing text";

    MoveTextInFrontOfExistingTextAction()
        : MoveBesideTextAction(std::make_unique<InFrontOfExistingTextInsertionStrategy>(ignoreCaseOfPlace)) {}
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {
            {{{"text", u"2024 "}, {"searchTerm", u"plan"}}, u"the plan 2024 x.txt", u"the 2024 plan x.txt"}};
    }
};

class MoveTextAfterExistingTextAction final : public MoveBesideTextAction {
  public:
    static constexpr const char* name = "Move text after existing text";

    MoveTextAfterExistingTextAction()
        : MoveBesideTextAction(std::make_unique<AfterExistingTextInsertionStrategy>(ignoreCaseOfPlace)) {}
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"text", u"2024 "}, {"searchTerm", u"plan "}}, u"2024 plan x.txt", u"plan 2024 x.txt"}};
    }
};

constexpr ActionEntry entries[]{
    entryFor<MoveTextToFrontAction>(),           entryFor<MoveTextToEndAction>(),
    entryFor<MoveTextToPositionAction>(),        entryFor<MoveTextInFrontOfExistingTextAction>(),
    entryFor<MoveTextAfterExistingTextAction>(),
};

} // namespace

std::span<const ActionEntry> moveTextActions() { return entries; }

} // namespace tavrin
