#include "actions/ActionFamilies.h"
#include "actions/TextPlacements.h"
#include "actions/folders/AddFolderNameAction.h"
#include "actions/folders/PathChain.h"
#include "actions/moving/ContentBasedAction.h"
#include "actions/moving/InsertionStrategies.h"

namespace tavrin {

namespace {

constexpr ExampleFile photos{"/Users/me/Photos", "", "", "", u""};
constexpr ExampleFile taxes{"/home/me/Taxes", "", "", "", u""};

class AddPathComponentsAction : public AddFolderNameAction {
  public:
    AddPathComponentsAction() {
        // Of no effect here, but kept for stored lists.
        addParameter(checkboxParameter("leadingSpace", "Not used", 0, 1).hidden());
        addParameter(checkboxParameter("trailingSpace", "Not used", 0, 1).hidden());
        chain.addParameters(
            [this](const ParameterDescription& row, auto& field) { addParameter(row, field); });
    }
    [[nodiscard]] std::string actionName() const override { return "abstractPathComponentsAction"; }

  protected:
    [[nodiscard]] std::optional<std::u16string_view> textToPlace(const InputContext& input) {
        return chain.textFor(input.inputPath());
    }

  private:
    PathChain chain{PathChain::ParentName::asItStands};
};

class AddPathComponentsAtFrontAction final : public placement::AtStart<AddPathComponentsAction> {
  public:
    static constexpr const char* name = "Add path components to front";

    AddPathComponentsAtFrontAction() { setDefault("prefix", u""); }
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"levels", 1}}, u"a.jpg", u"me_Photos_a.jpg", photos}};
    }
};

class AddPathComponentsToEndAction final : public placement::AtEnd<AddPathComponentsAction> {
  public:
    static constexpr const char* name = "Add path components to end";

    AddPathComponentsToEndAction() { setDefault("suffix", u""); }
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"levels", 1}, {"pathSeparator", u"-"}}, u"a.jpg", u"a_me-Photos.jpg", photos}};
    }
};

class PathComponentsContentStrategy final : public ContentStrategy {
  public:
    void addParametersTo(ContentBasedAction& action) override {
        chain.addParameters(
            [&action](const ParameterDescription& row, auto& field) { action.addParameter(row, field); });
    }

    [[nodiscard]] std::optional<std::u16string_view> processName(std::u16string_view,
                                                                 StrategyContext& context) override {
        return chain.textFor(context.input.inputPath());
    }

  private:
    PathChain chain{PathChain::ParentName::formatted};
};

class InsertPathComponentsAction : public ContentBasedAction {
  public:
    [[nodiscard]] bool hasLongParameterList() const override { return true; }

  protected:
    explicit InsertPathComponentsAction(std::unique_ptr<InsertionStrategy> insertion)
        : ContentBasedAction(std::make_unique<PathComponentsContentStrategy>(), std::move(insertion)) {}
};

class InsertPathComponentsInFrontOfExistingTextAction final : public InsertPathComponentsAction {
  public:
    static constexpr const char* name = "Insert path components in front of existing text";

    InsertPathComponentsInFrontOfExistingTextAction()
        : InsertPathComponentsAction(std::make_unique<InFrontOfExistingTextInsertionStrategy>()) {}
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"searchTerm", u"7"}}, u"scan7.pdf", u"scan_Taxes_7.pdf", taxes}};
    }
};

class InsertPathComponentsAtPositionAction final : public InsertPathComponentsAction {
  public:
    static constexpr const char* name = "Insert path components at position";

    InsertPathComponentsAtPositionAction()
        : InsertPathComponentsAction(std::make_unique<PositionInsertionStrategy>()) {}
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"position", 4}, {"levels", 1}}, u"scan7.pdf", u"scan_me_Taxes_7.pdf", taxes}};
    }
};

class InsertPathComponentsAfterExistingTextAction final : public InsertPathComponentsAction {
  public:
    static constexpr const char* name = "Insert path components after existing text";

    InsertPathComponentsAfterExistingTextAction()
        : InsertPathComponentsAction(std::make_unique<AfterExistingTextInsertionStrategy>()) {}
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"searchTerm", u"Scan"}}, u"scan7.pdf", u"scan_Taxes_7.pdf", taxes}};
    }
};

constexpr ActionEntry entries[]{
    entryFor<AddPathComponentsAtFrontAction>(),
    entryFor<AddPathComponentsToEndAction>(),
    entryFor<InsertPathComponentsInFrontOfExistingTextAction>(),
    entryFor<InsertPathComponentsAtPositionAction>(),
    entryFor<InsertPathComponentsAfterExistingTextAction>(),
};

} // namespace

std::span<const ActionEntry> pathComponentsActions() { return entries; }

} // namespace tavrin
