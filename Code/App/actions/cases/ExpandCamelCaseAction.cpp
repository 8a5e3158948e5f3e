#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"
#include "actions/Sequences.h"

namespace tavrin {

namespace {

enum class LetterCase { none, lower, upper };

/// Upper where the sequence has an upper case letter at all.
inline LetterCase letterCase(std::u16string_view sequence) {
    if (sequence.size() == 1 && sequence.front() < 0x80) {
        const auto unit = sequence.front();
        if (text::units::asciiUpper(unit) != unit)
            return LetterCase::lower;
        return text::units::asciiLower(unit) != unit ? LetterCase::upper : LetterCase::none;
    }
    auto found = LetterCase::none;
    for (std::size_t i = 0; i < sequence.size();) {
        const char32_t c = text::units::codePointAt(sequence, i);
        if (text::isUppercaseLetter(c))
            return LetterCase::upper;
        if (text::isLowercaseLetter(c))
            found = LetterCase::lower;
        i += text::units::unitCount(c);
    }
    return found;
}

/// Puts a separator in front of every capital that follows a small letter, also with other capitals between.
class ExpandCamelCaseAction final : public FragmentAction {
  public:
    ExpandCamelCaseAction() {
        addParameter(characterParameter("separator", "Put between", u" ").first().orLeftOut(),
                     paramSeparator);
    }

  protected:
    void prepareParameters() override {
        BaseRenameAction::prepareParameters();
        paramSeparator = limitTextFieldInputTo1Character("separator");
    }

    [[gnu::flatten]] void processName(std::u16string_view fragment, std::u16string& result) override {
        bool followsSmallLetter = false;
        forEachSequence(fragment, [&](std::u16string_view sequence) {
            const auto kind = letterCase(sequence);
            if (kind != LetterCase::upper)
                followsSmallLetter = kind == LetterCase::lower;
            else if (followsSmallLetter)
                result += paramSeparator;
            result += sequence;
        });
    }

  private:
    std::u16string paramSeparator;
};

} // namespace

std::vector<ActionEntry> camelCaseActions() {
    return {
        {"Expand camel case",
         "Split CamelCase",
         {"split-camel"},
         ActionCategory::letterCase,
         newAction<ExpandCamelCaseAction>,
         {{{}, u"myHolidayPhoto.jpg", u"my Holiday Photo.jpg"}, {{}, u"fooBAR", u"foo B A R"}}},
    };
}

} // namespace tavrin
