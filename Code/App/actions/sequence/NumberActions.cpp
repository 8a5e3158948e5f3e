#include "actions/ActionFamilies.h"
#include "actions/TextPlacements.h"
#include "actions/sequence/SortNumberBasedAction.h"

namespace tavrin {

namespace {

class ProduceNumberedListAction final : public placement::WholeName<SortNumberBasedAction> {
  public:
    static constexpr const char* name = "Produce numbered list";

    ProduceNumberedListAction() { setDefault("prefix", u"Image_"); }
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {
            {{}, u"DSC_0042.jpg", u"Image_01.jpg"},
            {{{"prefix", u"Trip "}, {"padding", 3}, {"startValue", 10}}, u"DSC_0042.jpg", u"Trip 010.jpg"}};
    }
};

class AddNumberToStartAction final : public placement::AtStart<SortNumberBasedAction> {
  public:
    static constexpr const char* name = "Add number to start";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"padding", 3}}, u"photo.jpg", u"001photo.jpg"}};
    }
};

class AddNumberToEndAction final : public placement::AtEnd<SortNumberBasedAction> {
  public:
    static constexpr const char* name = "Add number to end";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{}, u"photo.jpg", u"photo01.jpg"}};
    }
};

class InsertNumberAtPositionAction final : public placement::AtPosition<SortNumberBasedAction> {
  public:
    static constexpr const char* name = "Insert number at position";

    InsertNumberAtPositionAction() {
        // Kept for stored lists, which have them.
        addParameter(textParameter("prefix", "Not used").hidden());
        addParameter(textParameter("suffix", "Not used").hidden());
    }
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"position", 4}}, u"scan page.pdf", u"scan01 page.pdf"}};
    }
};

class InsertNumberInFrontOfExistingTextAction final
    : public placement::OnPrecomposedName<placement::InFrontOfText<SortNumberBasedAction>> {
  public:
    static constexpr const char* name = "Insert number in front of existing text";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"searchTerm", u" of"}}, u"page of report.pdf", u"page01 of report.pdf"}};
    }
};

class InsertNumberAfterExistingTextAction final
    : public placement::OnPrecomposedName<placement::AfterText<SortNumberBasedAction>> {
  public:
    static constexpr const char* name = "Insert number after existing text";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"searchTerm", u"Page "}}, u"page of report.pdf", u"page 01of report.pdf"}};
    }
};

constexpr ActionEntry entries[]{
    entryFor<ProduceNumberedListAction>(),
    entryFor<AddNumberToStartAction>(),
    entryFor<AddNumberToEndAction>(),
    entryFor<InsertNumberAtPositionAction>(),
    entryFor<InsertNumberInFrontOfExistingTextAction>(),
    entryFor<InsertNumberAfterExistingTextAction>(),
};

} // namespace

std::span<const ActionEntry> numberActions() { return entries; }

} // namespace tavrin
