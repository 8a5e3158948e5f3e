#pragma once

#include "actions/BaseRenameAction.h"
#include "support/text/TextSearch.h"

namespace tavrin {

/// Replaces some or all occurrences of a text. Works on, and returns, form C.
class ReplaceTextAction : public BaseRenameAction {
  public:
    static constexpr const char* name = "Replace text";

    ReplaceTextAction();
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override;
    [[nodiscard]] std::u16string explanation() const override { return sentence(u"Replace "); }

    /// The two halves of a sentence about the parameters, around the text sought.
    [[nodiscard]] std::string userDescriptionOccurence() const;
    [[nodiscard]] std::string userDescriptionIgnore() const;

  protected:
    /// The sentence about the parameters; empty while there is no text to look for.
    [[nodiscard]] std::u16string sentence(std::u16string_view verb) const;
    void prepareParameters() override;
    void processName(std::u16string_view fragment, const InputContext& input, OutputContext& output,
                     std::u16string& result) override;

  private:
    [[nodiscard]] bool shouldReplaceCurrentOccurence(std::int64_t index, std::int64_t outOf) const;
    void collectMatches(std::u16string_view text);

    std::u16string paramSearchTerm;
    std::u16string paramReplacementTerm;
    std::int32_t paramReplacementMode = 0;
    std::int32_t paramIgnoreCase = 1;
    TextSearch search;
    std::vector<TextRange> matches; ///< of the name in hand
};

} // namespace tavrin
