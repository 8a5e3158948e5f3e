#include "actions/ActionFamilies.h"
#include "actions/TextPlacements.h"
#include "actions/sequence/AlphabeticalListBasedAction.h"

namespace tavrin {

namespace {

class ProduceAlphabeticalListAction final : public placement::WholeName<AlphabeticalListBasedAction> {
  public:
    static constexpr const char* name = "Produce alphabetical list";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"prefix", u"Appendix "}, {"startValue", u"C"}}, u"tables.pdf", u"Appendix C.pdf"}};
    }
};

class AddAlphabeticalSequenceToStartAction final : public placement::AtStart<AlphabeticalListBasedAction> {
  public:
    static constexpr const char* name = "Add alphabetical sequence to start";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"padding", 2}}, u" plan.txt", u"AA plan.txt"}};
    }
};

class AddAlphabeticalSequenceToEndAction final : public placement::AtEnd<AlphabeticalListBasedAction> {
  public:
    static constexpr const char* name = "Add alphabetical sequence to end";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"startValue", u"BA"}}, u"plan-.txt", u"plan-BA.txt"}};
    }
};

class InsertAlphabeticalSequenceAtPositionAction final
    : public placement::AtPosition<AlphabeticalListBasedAction> {
  public:
    static constexpr const char* name = "Insert alphabetical sequence at position";

    InsertAlphabeticalSequenceAtPositionAction() {
        // Kept for stored lists, which have them.
        addParameter(textParameter("prefix", "Not used").hidden());
        addParameter(textParameter("suffix", "Not used").hidden());
    }
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"position", 2}}, u"12 plan.txt", u"12A plan.txt"}};
    }
};

class InsertAlphabeticalSequenceInFrontOfExistingTextAction final
    : public placement::OnPrecomposedName<placement::InFrontOfText<AlphabeticalListBasedAction>> {
  public:
    static constexpr const char* name = "Insert alphabetical sequence in front of existing text";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"searchTerm", u" plan"}}, u"12 plan.txt", u"12A plan.txt"}};
    }
};

class InsertAlphabeticalSequenceAfterExistingTextAction final
    : public placement::OnPrecomposedName<placement::AfterText<AlphabeticalListBasedAction>> {
  public:
    static constexpr const char* name = "Insert alphabetical sequence after existing text";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"searchTerm", u"Plan"}}, u"plan 12.txt", u"planA 12.txt"}};
    }
};

constexpr ActionEntry entries[]{
    entryFor<ProduceAlphabeticalListAction>(),
    entryFor<AddAlphabeticalSequenceToStartAction>(),
    entryFor<AddAlphabeticalSequenceToEndAction>(),
    entryFor<InsertAlphabeticalSequenceAtPositionAction>(),
    entryFor<InsertAlphabeticalSequenceInFrontOfExistingTextAction>(),
    entryFor<InsertAlphabeticalSequenceAfterExistingTextAction>(),
};

} // namespace

std::span<const ActionEntry> alphabeticalSequenceActions() { return entries; }

} // namespace tavrin
