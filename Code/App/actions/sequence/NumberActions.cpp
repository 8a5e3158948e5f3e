#include "actions/ActionFamilies.h"
#include "actions/sequence/SortNumberBasedAction.h"

namespace tavrin {

namespace {

/// A number between two texts is the whole new fragment.
class ProduceNumberedListAction final : public SortNumberBasedAction {
  public:
    static constexpr const char* name = "Produce numbered list";

    ProduceNumberedListAction() {
        addParameter(textParameter("prefix", "Text in front", u"Image_"), paramPrefix);
        addParameter(textParameter("suffix", "Text behind"), paramSuffix);
    }
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override {
        return {
            {{}, u"DSC_0042.jpg", u"Image_01.jpg"},
            {{{"prefix", u"Trip "}, {"padding", 3}, {"startValue", 10}}, u"DSC_0042.jpg", u"Trip 010.jpg"}};
    }

  protected:
    void processName(std::u16string_view, const InputContext& input, OutputContext&,
                     std::u16string& result) override {
        result += paramPrefix;
        appendFormattedNumberString(input, result);
        result += paramSuffix;
    }

  private:
    std::u16string paramPrefix;
    std::u16string paramSuffix;
};

constexpr ActionEntry entries[]{entryFor<ProduceNumberedListAction>()};

} // namespace

std::span<const ActionEntry> numberActions() { return entries; }

} // namespace tavrin
