#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"
#include "actions/cases/UnitCase.h"
#include "support/text/Text.h"

namespace tavrin {

namespace {

class UppercaseAction final : public BaseRenameAction {
  public:
    static constexpr const char* name = "Make uppercase";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{}, u"straße.txt", u"STRASSE.txt"}};
    }

  protected:
    void processName(std::u16string_view fragment, const InputContext&, OutputContext&,
                     std::u16string& result) override {
        result += text::uppercased(fragment);
    }
};

class LowercaseAction final : public BaseRenameAction {
  public:
    static constexpr const char* name = "Make lowercase";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"fragmentSelection", 0}}, u"IMG_4021.JPG", u"img_4021.jpg"}};
    }

  protected:
    void processName(std::u16string_view fragment, const InputContext&, OutputContext&,
                     std::u16string& result) override {
        result += text::lowercased(fragment);
    }
};

/// Capitalizes the very first code unit, whatever it is.
class SentenceCaseAction final : public BaseRenameAction {
  public:
    static constexpr const char* name = "Make sentencecase";

    SentenceCaseAction() {
        addParameter(checkboxParameter("forceToLowercase", "Make the other letters small", 1, 0),
                     paramForceToLowerCase);
    }
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{}, u"HELLO WORLD.txt", u"Hello world.txt"}};
    }

  protected:
    void processName(std::u16string_view fragment, const InputContext&, OutputContext&,
                     std::u16string& result) override {
        if (fragment.empty())
            return;
        appendUppercasedUnit(fragment.front(), result);
        if (paramForceToLowerCase != 1) {
            result.append(fragment, 1);
            return;
        }
        for (const char16_t unit : fragment.substr(1))
            appendLowercasedUnit(unit, result);
    }

  private:
    std::int32_t paramForceToLowerCase = 0;
};

/// Removes accents and other nonspacing marks.
class FoldStringAction final : public BaseRenameAction {
  public:
    static constexpr const char* name = "Fold String";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{}, u"Crème Brûlée.txt", u"Creme Brulee.txt"}};
    }
    [[nodiscard]] std::u16string explanation() const override {
        return u"Removes accents and other marks from letters.";
    }

  protected:
    void processName(std::u16string_view fragment, const InputContext&, OutputContext&,
                     std::u16string& result) override {
        result += text::withoutDiacritics(fragment);
    }
};

constexpr ActionEntry entries[]{
    entryFor<LowercaseAction>(),
    entryFor<UppercaseAction>(),
    entryFor<SentenceCaseAction>(),
    entryFor<FoldStringAction>(),
};

} // namespace

std::span<const ActionEntry> caseActions() { return entries; }

} // namespace tavrin
