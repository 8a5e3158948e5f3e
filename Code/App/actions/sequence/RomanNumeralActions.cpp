#include "actions/ActionFamilies.h"
#include "actions/TextPlacements.h"
#include "actions/sequence/RomanNumeralBasedAction.h"

namespace tavrin {

namespace {

class ProduceRomanNumberalListAction final : public placement::WholeName<RomanNumeralBasedAction> {
  public:
    static constexpr const char* name = "Produce roman numeral list";

    ProduceRomanNumberalListAction() { setDefault("prefix", u"Image_"); }
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"prefix", u"Chapter "}, {"startValue", 14}}, u"draft.txt", u"Chapter XIV.txt"}};
    }
};

class AddRomanNumeralToStartAction final : public placement::AtStart<RomanNumeralBasedAction> {
  public:
    static constexpr const char* name = "Add roman numeral to start";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"startValue", 4}}, u" Allegro.flac", u"IV Allegro.flac"}};
    }
};

class AddRomanNumeralToEndAction final : public placement::AtEnd<RomanNumeralBasedAction> {
  public:
    static constexpr const char* name = "Add roman numeral to end";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"startValue", 2}}, u"Part .txt", u"Part II.txt"}};
    }
};

class InsertRomanAtPositionAction final : public placement::AtPosition<RomanNumeralBasedAction> {
  public:
    static constexpr const char* name = "Insert roman numeral at position";

    InsertRomanAtPositionAction() {
        // Kept for stored lists, which have them.
        addParameter(textParameter("prefix", "Not used").hidden());
        addParameter(textParameter("suffix", "Not used").hidden());
    }
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"position", 4}, {"startValue", 9}}, u"act - end.txt", u"act IX- end.txt"}};
    }
};

class InsertRomanNumeralInFrontOfExistingTextAction final
    : public placement::OnPrecomposedName<placement::InFrontOfText<RomanNumeralBasedAction>> {
  public:
    static constexpr const char* name = "Insert roman numeral in front of existing text";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"searchTerm", u". "}, {"startValue", 3}}, u"Act. The end.txt", u"ActIII. The end.txt"}};
    }
};

class InsertRomanAfterExistingTextAction final
    : public placement::OnPrecomposedName<placement::AfterText<RomanNumeralBasedAction>> {
  public:
    static constexpr const char* name = "Insert roman numeral after existing text";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"searchTerm", u"Louis "}, {"startValue", 14}},
                 u"Louis of France.txt",
                 u"Louis XIVof France.txt"}};
    }
};

constexpr ActionEntry entries[]{
    entryFor<ProduceRomanNumberalListAction>(),
    entryFor<AddRomanNumeralToStartAction>(),
    entryFor<AddRomanNumeralToEndAction>(),
    entryFor<InsertRomanAtPositionAction>(),
    entryFor<InsertRomanNumeralInFrontOfExistingTextAction>(),
    entryFor<InsertRomanAfterExistingTextAction>(),
};

} // namespace

std::span<const ActionEntry> romanNumeralActions() { return entries; }

} // namespace tavrin
