#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"

#include <algorithm>

namespace tavrin {

namespace {

/// Cuts code units off the start.
class RemoveAtFrontAction : public BaseRenameAction {
  public:
    static constexpr const char* name = "Remove at front";

    RemoveAtFrontAction() {
        addParameter(numberParameter("numberOfCharacters", "Characters", 0, 0).between(0, 255), characters);
    }
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"numberOfCharacters", 4}}, u"IMG_4021.JPG", u"4021.JPG"}};
    }

  protected:
    void processName(std::u16string_view fragment, const InputContext&, OutputContext&,
                     std::u16string& result) override {
        // A negative count is greater than any length.
        result +=
            fragment.substr(std::min<std::size_t>(static_cast<std::uint32_t>(characters), fragment.size()));
    }

    std::int32_t characters = 0;
};

class RemoveFromEndAction final : public RemoveAtFrontAction {
  public:
    static constexpr const char* name = "Remove from end";

    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {{{{"numberOfCharacters", 5}}, u"letter copy.txt", u"letter.txt"}};
    }

  protected:
    void processName(std::u16string_view fragment, const InputContext&, OutputContext&,
                     std::u16string& result) override {
        const auto count = static_cast<std::size_t>(std::max(characters, 0));
        result += fragment.substr(0, fragment.size() - std::min(count, fragment.size()));
    }
};

constexpr ActionEntry entries[]{entryFor<RemoveAtFrontAction>(), entryFor<RemoveFromEndAction>()};

} // namespace

std::span<const ActionEntry> removeAtEndsActions() { return entries; }

} // namespace tavrin
