#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"
#include "support/text/Text.h"

namespace tavrin {

namespace {

enum class LetterCase { none, lower, upper };

/// The end of the composed character sequence at `start`.
std::size_t sequenceEnd(std::u16string_view text, std::size_t start) {
    // Nothing below the combining marks joins what is in front of it, but for the line feed of CR LF.
    const auto isPlain = [](char16_t unit) { return unit < 0x300 && unit != u'\r'; };
    if (isPlain(text[start]) && (start + 1 == text.size() || isPlain(text[start + 1])))
        return start + 1;
    return text::composedSequenceEnd(text, start);
}

/// Upper where the sequence has an upper case letter at all.
LetterCase letterCase(std::u16string_view sequence) {
    if (sequence.size() == 1 && sequence.front() < 0x80) {
        const auto unit = sequence.front();
        if (unit >= u'a' && unit <= u'z')
            return LetterCase::lower;
        return unit >= u'A' && unit <= u'Z' ? LetterCase::upper : LetterCase::none;
    }
    auto found = LetterCase::none;
    for (std::size_t i = 0; i < sequence.size(); ++i) {
        char32_t c = sequence[i];
        const bool isPair =
            (c & 0xFC00) == 0xD800 && i + 1 < sequence.size() && (sequence[i + 1] & 0xFC00) == 0xDC00;
        if (isPair)
            c = 0x10000 + ((c & 0x3FF) << 10) + (sequence[++i] & 0x3FF);
        if (text::isUppercaseLetter(c))
            return LetterCase::upper;
        if (text::isLowercaseLetter(c))
            found = LetterCase::lower;
    }
    return found;
}

/// Puts a separator in front of every capital that follows a small letter, also with other capitals between.
class ExpandCamelCaseAction final : public BaseRenameAction {
  public:
    static constexpr const char* name = "Expand camel case";

    ExpandCamelCaseAction() {
        addParameter(characterParameter("separator", "Put between", u" "), paramSeparator);
    }
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{}, u"myHolidayPhoto.jpg", u"my Holiday Photo.jpg"}, {{}, u"fooBAR", u"foo B A R"}};
    }

  protected:
    void prepareParameters() override {
        BaseRenameAction::prepareParameters();
        paramSeparator = limitTextFieldInputTo1Character("separator");
    }

    void processName(std::u16string_view fragment, const InputContext&, OutputContext&,
                     std::u16string& result) override {
        bool followsSmallLetter = false;
        std::size_t end = 0;
        for (std::size_t start = 0; start < fragment.size(); start = end) {
            end = sequenceEnd(fragment, start);
            const auto sequence = fragment.substr(start, end - start);
            const auto kind = letterCase(sequence);
            if (kind != LetterCase::upper)
                followsSmallLetter = kind == LetterCase::lower;
            else if (followsSmallLetter)
                result += paramSeparator;
            result += sequence;
        }
    }

  private:
    std::u16string paramSeparator;
};

constexpr ActionEntry entries[]{entryFor<ExpandCamelCaseAction>()};

} // namespace

std::span<const ActionEntry> camelCaseActions() { return entries; }

} // namespace tavrin
