#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"
#include "actions/PaddedNumber.h"
#include "actions/characters/NumberTokenizer.h"
#include "actions/characters/SequenceFilter.h"

#include <algorithm>
#include <array>

namespace tavrin {

namespace {

constexpr std::int32_t firstModeFromRight = 6;
constexpr std::int32_t allDigits = 12;

std::span<const ParameterChoice> removableBlocks() {
    static const auto choices = [] {
        std::array<ParameterChoice, allDigits + 1> all{};
        std::ranges::copy(occurrenceChoices(), all.begin());
        all.back() = {allDigits, "All digits"};
        return all;
    }();
    return choices;
}

std::optional<TextRange> findBlock(std::u16string_view fragment, std::int32_t mode) {
    const NumberTokenizer tokenizer(fragment);
    return mode < firstModeFromRight ? tokenizer.getNumberTokenRangeFromLeft(mode)
                                     : tokenizer.getNumberTokenRangeFromRight(mode - firstModeFromRight);
}

class RemoveNumbersAction final : public BaseRenameAction {
  public:
    static constexpr const char* name = "Remove numbers";

    RemoveNumbersAction() {
        addParameter(choiceParameter("blockMode", "Which number", removableBlocks(), 6, 6), paramBlockMode);
    }
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{}, u"trip2 photo 0042.jpg", u"trip2 photo .jpg"},
                {{{"blockMode", 12}}, u"a1b22c.txt", u"abc.txt"}};
    }

  protected:
    void processName(std::u16string_view fragment, const InputContext&, OutputContext&,
                     std::u16string& result) override {
        if (paramBlockMode == allDigits) {
            appendSequences(fragment, result, [](std::u16string_view sequence) {
                return sequence.size() > 1 || !NumberTokenizer::isDigit(sequence.front());
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

class ChangeNumbersAction final : public BaseRenameAction {
  public:
    static constexpr const char* name = "Change numbers";

    ChangeNumbersAction() {
        addParameter(choiceParameter("blockMode", "Which number", occurrenceChoices(), 6, 6), paramBlockMode);
        addParameter(choiceParameter("operationMode", "Change", operations, 0, 0), paramOperationMode);
        addParameter(numberParameter("operand", "By", 0, 0).beside("operationMode"), paramOperand);
        addParameter(numberParameter("padding", "Digits", 1, 1).between(0, 20), paramPadding);
    }
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"operand", 100}, {"padding", 4}}, u"IMG_0042.jpg", u"IMG_0142.jpg"},
                {{{"operand", 1}, {"operationMode", 1}, {"padding", 2}}, u"x10.txt", u"x09.txt"}};
    }

  protected:
    void processName(std::u16string_view fragment, const InputContext&, OutputContext&,
                     std::u16string& result) override {
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

constexpr ActionEntry entries[]{entryFor<RemoveNumbersAction>(), entryFor<ChangeNumbersAction>()};

} // namespace

std::span<const ActionEntry> numberBlockActions() { return entries; }

} // namespace tavrin
