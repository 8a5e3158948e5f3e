#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"

#include <algorithm>

namespace tavrin {

namespace {

/// Cuts code units off the start.
class RemoveAtFrontAction : public FragmentAction {
  public:
    RemoveAtFrontAction() {
        addParameter(numberParameter("numberOfCharacters", "Characters", 0).between(0, 255).first(),
                     characters);
    }

  protected:
    void processName(std::u16string_view fragment, std::u16string& result) override {
        // A negative count is greater than any length.
        result +=
            fragment.substr(std::min<std::size_t>(static_cast<std::uint32_t>(characters), fragment.size()));
    }

    std::int32_t characters = 0;
};

class RemoveFromEndAction final : public RemoveAtFrontAction {
  public:
  protected:
    void processName(std::u16string_view fragment, std::u16string& result) override {
        const auto count = static_cast<std::size_t>(std::max(characters, 0));
        result += fragment.substr(0, fragment.size() - std::min(count, fragment.size()));
    }
};

} // namespace

std::vector<ActionEntry> removeAtEndsActions() {
    constexpr auto category = ActionCategory::remove;
    return {
        {"Remove at front",
         "Remove first characters",
         {"drop", Place::start},
         category,
         newAction<RemoveAtFrontAction>,
         {{{{"numberOfCharacters", 4}}, u"IMG_4021.JPG", u"4021.JPG"}}},
        {"Remove from end",
         "Remove last characters",
         {"drop", Place::end},
         category,
         newAction<RemoveFromEndAction>,
         {{{{"numberOfCharacters", 5}}, u"letter copy.txt", u"letter.txt"}}},
    };
}

} // namespace tavrin
