#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"
#include "actions/PaddedNumber.h"
#include "actions/Sequences.h"
#include "support/text/TextSearch.h"

#include <algorithm>
#include <array>
#include <vector>

namespace tavrin {

namespace {

constexpr std::int32_t firstModeFromRight = 6;
constexpr std::int32_t allDigits = 12;

std::span<const ParameterChoice> removableBlocks() {
    static const auto choices = [] {
        std::array<ParameterChoice, allDigits + 1> all{};
        std::ranges::copy(occurrenceChoices(), all.begin());
        all.back() = {allDigits, "All digits", "every"};
        return all;
    }();
    return choices;
}

/// Only "0" to "9" count, no digits of other scripts.
bool isDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

/// The block of digits that a mode stands for, absent where there is none.
std::optional<TextRange> findBlock(std::u16string_view text, std::int64_t mode) {
    std::vector<TextRange> blocks;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const auto start = at;
        while (at < text.size() && isDigit(text[at]))
            ++at;
        if (at > start)
            blocks.push_back({start, at - start});
    }
    const auto count = static_cast<std::int64_t>(blocks.size());
    const auto index = mode < firstModeFromRight ? mode : count - 1 - (mode - firstModeFromRight);
    if (index < 0 || index >= count)
        return std::nullopt;
    return blocks[static_cast<std::size_t>(index)];
}

class RemoveNumbersAction final : public FragmentAction {
  public:
    RemoveNumbersAction() {
        addParameter(choiceParameter("blockMode", "Which number", removableBlocks(), 6).alone(),
                     paramBlockMode);
    }

  protected:
    void processName(std::u16string_view fragment, std::u16string& result) override {
        if (paramBlockMode == allDigits) {
            forEachSequence(fragment, [&](std::u16string_view sequence) {
                if (sequence.size() > 1 || !isDigit(sequence.front()))
                    result += sequence;
            });
        } else if (const auto block = findBlock(fragment, paramBlockMode)) {
            result.append(fragment, 0, block->location);
            appendFormatted(fragment.substr(block->end()), result);
        } else {
            result += fragment;
        }
    }

  private:
    /// What lies behind the block is taken for a format, in which "%%" stands for "%".
    static void appendFormatted(std::u16string_view format, std::u16string& result) {
        for (std::size_t at = 0; at < format.size(); ++at) {
            result += format[at];
            if (format.substr(at).starts_with(u"%%"))
                ++at;
        }
    }

    std::int32_t paramBlockMode = 6;
};

constexpr std::array<ParameterChoice, 2> operations{{{0, "Add"}, {1, "Subtract"}}};

class ChangeNumbersAction final : public FragmentAction {
  public:
    ChangeNumbersAction() {
        addParameter(choiceParameter("blockMode", "Which number", occurrenceChoices(), 6).alone(),
                     paramBlockMode);
        addParameter(choiceParameter("operationMode", "Change", operations, 0), paramOperationMode);
        addParameter(numberParameter("operand", "By", 0)
                         .beside("operationMode")
                         .first()
                         .orLeftOut()
                         .signedBy("operationMode"),
                     paramOperand);
        addParameter(numberParameter("padding", "Digits", 1).between(0, 20).option("digits"), paramPadding);
    }

  protected:
    void processName(std::u16string_view fragment, std::u16string& result) override {
        const auto block = findBlock(fragment, paramBlockMode);
        if (!block) {
            result += fragment;
            return;
        }
        result.append(fragment, 0, block->location);
        appendPaddedNumber(changed(text::intValue(fragment.substr(block->location, block->length))),
                           paramPadding, result);
        result.append(fragment, block->end());
    }

  private:
    /// Wraps round at 32 bits.
    [[nodiscard]] std::int32_t changed(std::int32_t value) const {
        const auto operand = static_cast<std::uint32_t>(paramOperand);
        const auto old = static_cast<std::uint32_t>(value);
        return static_cast<std::int32_t>(paramOperationMode == 0 ? old + operand : old - operand);
    }

    std::int32_t paramPadding = 1;
    std::int32_t paramOperand = 0;
    std::int32_t paramOperationMode = 0;
    std::int32_t paramBlockMode = 6;
};

} // namespace

std::vector<ActionEntry> numberBlockActions() {
    return {
        {"Remove numbers",
         "Remove digits",
         {"remove-digits"},
         ActionCategory::remove,
         newAction<RemoveNumbersAction>,
         {{{}, u"trip2 photo 0042.jpg", u"trip2 photo .jpg"},
          {{{"blockMode", 12}}, u"a1b22c.txt", u"abc.txt"}}},
        {"Change numbers",
         "Change a number",
         {"renumber"},
         ActionCategory::number,
         newAction<ChangeNumbersAction>,
         {{{{"operand", 100}, {"padding", 4}}, u"IMG_0042.jpg", u"IMG_0142.jpg"},
          {{{"operand", 1}, {"operationMode", 1}, {"padding", 2}}, u"x10.txt", u"x09.txt"}}},
    };
}

} // namespace tavrin
