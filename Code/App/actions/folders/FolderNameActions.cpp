#include "actions/ActionFamilies.h"
#include "actions/TextPlacements.h"
#include "actions/folders/AddFolderNameAction.h"

namespace tavrin {

namespace {

constexpr ExampleFile photos{"/Users/me/Photos", "", "", "", u""};
constexpr ExampleFile taxes{"/home/me/Taxes", "", "", "", u""};

/// The members that insert put the blanks around the text once more, on purpose: two in front, two behind.
class InsertFolderNameAction : public AddFolderNameAction {
  protected:
    [[nodiscard]] std::optional<std::u16string_view> textToPlace(const InputContext& input) {
        spaced = AddFolderNameAction::textToPlace(input).value_or(std::u16string_view());
        addSpaces(spaced);
        return spaced;
    }

  private:
    std::u16string spaced;
};

class AddFolderNameAtFront final : public placement::AtStart<AddFolderNameAction> {
  public:
    static constexpr const char* name = "Add folder name to front";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"trailingSpace", 1}}, u"a.jpg", u"Photos a.jpg", photos}};
    }
};

class AddFolderNameToEnd final : public placement::AtEnd<AddFolderNameAction> {
  public:
    static constexpr const char* name = "Add folder name to end";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"leadingSpace", 1}}, u"a.jpg", u"a Photos.jpg", photos}};
    }
};

class InsertFolderNameInFrontOfExistingTextAction final
    : public placement::InFrontOfText<InsertFolderNameAction> {
  public:
    static constexpr const char* name = "Insert folder name in front of existing text";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"searchTerm", u"-"}}, u"scan-7.pdf", u"scanTaxes-7.pdf", taxes}};
    }
};

class InsertFolderNameAtPositionAction final : public placement::AtPosition<InsertFolderNameAction> {
  public:
    static constexpr const char* name = "Insert folder name at position";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"position", 5}}, u"scan-7.pdf", u"scan-Taxes7.pdf", taxes}};
    }
};

class InsertFolderNameAfterExistingTextAction final : public placement::AfterText<InsertFolderNameAction> {
  public:
    static constexpr const char* name = "Insert folder name after existing text";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"searchTerm", u"-"}}, u"scan-7.pdf", u"scan-Taxes7.pdf", taxes}};
    }
};

constexpr ActionEntry entries[]{
    entryFor<AddFolderNameAtFront>(),
    entryFor<AddFolderNameToEnd>(),
    entryFor<InsertFolderNameInFrontOfExistingTextAction>(),
    entryFor<InsertFolderNameAtPositionAction>(),
    entryFor<InsertFolderNameAfterExistingTextAction>(),
};

} // namespace

std::span<const ActionEntry> folderNameActions() { return entries; }

} // namespace tavrin
