#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"
#include "actions/PrecomposedText.h"
#include "actions/RenameActionHelper.h"
#include "support/text/Text.h"
#include "support/text/TextSearch.h"

namespace tavrin {

namespace {

/// Replaces a text with which the fragment begins. Works on, and returns, form C. The range looked at is as
/// long as the text sought, and goes as a whole where the text is found in it.
class ReplaceAtFrontAction : public BaseRenameAction {
  public:
    static constexpr const char* name = "Replace at front";

    ReplaceAtFrontAction() : ReplaceAtFrontAction("If the name starts with") {}
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"replace", u"dsc"}, {"with", u"Photo "}}, u"DSC042.jpg", u"Photo 042.jpg"}};
    }

  protected:
    explicit ReplaceAtFrontAction(std::string_view label) {
        addParameter(textParameter("replace", label), paramReplace);
        addParameter(textParameter("with", "Replace it by"), paramWith);
        addParameter(checkboxParameter("ignoreCase", "Ignore case", 1, 1), paramIgnoreCase);
    }

    void prepareParameters() override {
        BaseRenameAction::prepareParameters();
        search =
            TextSearch(text::precomposed(paramReplace), RenameActionHelper::sensitivity(paramIgnoreCase));
    }

    void processName(std::u16string_view fragment, const InputContext&, OutputContext&,
                     std::u16string& result) override {
        const PrecomposedText composed(fragment);
        const auto text = composed.view();
        const auto length = search.text().size();
        if (length <= text.size() && replaceIn(text, length, result))
            return;
        result += text;
    }

    /// Appends the new text if the text sought, of this length, stands where it should.
    [[nodiscard]] virtual bool replaceIn(std::u16string_view text, std::size_t length,
                                         std::u16string& result) const {
        if (!search.first(text, {0, length}))
            return false;
        result.append(paramWith).append(text, length);
        return true;
    }

    TextSearch search;
    std::u16string paramWith;

  private:
    std::u16string paramReplace;
    std::int32_t paramIgnoreCase = 1;
};

class RemoveTextAtFrontAction final : public ReplaceAtFrontAction {
  public:
    static constexpr const char* name = "Remove text at front";

    RemoveTextAtFrontAction() : ReplaceAtFrontAction("Text") {
        setDefault("with", u"");
        hideParameter("with");
    }
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"replace", u"Copy of "}}, u"Copy of letter.txt", u"letter.txt"}};
    }
};

class ReplaceAtEndAction : public ReplaceAtFrontAction {
  public:
    static constexpr const char* name = "Replace at end";

    ReplaceAtEndAction() : ReplaceAtEndAction("If the name ends with") {}
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"replace", u"draft"}, {"with", u"final"}}, u"plan draft.txt", u"plan final.txt"}};
    }

  protected:
    explicit ReplaceAtEndAction(std::string_view label) : ReplaceAtFrontAction(label) {}

    [[nodiscard]] bool replaceIn(std::u16string_view text, std::size_t length,
                                 std::u16string& result) const override {
        const auto start = text.size() - length;
        if (!search.first(text, {start, length}))
            return false;
        result.append(text, 0, start).append(paramWith);
        return true;
    }
};

class RemoveTextAtEndAction final : public ReplaceAtEndAction {
  public:
    static constexpr const char* name = "Remove text at end";

    RemoveTextAtEndAction() : ReplaceAtEndAction("Text") {
        setDefault("with", u"");
        hideParameter("with");
    }
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"replace", u" copy"}}, u"letter copy.txt", u"letter.txt"}};
    }
};

constexpr ActionEntry entries[]{
    entryFor<ReplaceAtFrontAction>(),
    entryFor<ReplaceAtEndAction>(),
    entryFor<RemoveTextAtFrontAction>(),
    entryFor<RemoveTextAtEndAction>(),
};

} // namespace

std::span<const ActionEntry> replaceAtEndsActions() { return entries; }

} // namespace tavrin
