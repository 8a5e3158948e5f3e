#pragma once

#include "actions/SortBasedAction.h"
#include "actions/TextPlacement.h"

#include <string>
#include <string_view>

namespace tavrin {

/// An action that puts a text into the name which counts through the items: what the families of numbers,
/// roman numerals and letters share. Beside an existing text it works on, and returns, form C.
class SequenceAction : public SortBasedAction {
  public:
    [[nodiscard]] bool hasLongParameterList() const override { return true; }
    [[nodiscard]] bool goesByNameAlone() const override { return true; }

  protected:
    explicit SequenceAction(Place place) : placement(place) {}
    /// Adds the rows of the place, behind those of the sequence. A new name has texts around the sequence, of
    /// which `prefix` is the first.
    void addPlacementParameters(std::u16string_view prefix = u"");

    /// Adds the row that tells how wide the values are at least (`padding`), and beside it whether they are
    /// wider where the widest of the run needs it, which a stored list without the key does not want.
    void addWidthParameters(const ParameterDescription& width);
    /// How wide the widest value of the ranks up to that one is. Asked once for each run.
    [[nodiscard]] virtual std::int32_t widestValue(std::int32_t lastRank) const = 0;
    /// How wide to make the values of a run that ends with that rank; negative as it is stored.
    [[nodiscard]] std::int32_t widthFor(std::int32_t lastRank) const;
    /// The same for the run of the item in hand.
    [[nodiscard]] std::int32_t width() const { return widthInRun; }

    /// The text of the item, valid until the next call; null where there is none, so that the name stays.
    [[nodiscard]] virtual const std::u16string* textFor(const InputContext& input) = 0;

    void prepareParameters() override;
    void processName(std::u16string_view fragment, std::u16string& result) final;

  private:
    TextPlacement placement;
    std::int32_t paramPadding = 0;
    std::int32_t paramPaddingMode = 0;
    std::int32_t measuredRank = 0; ///< the last rank that `widthInRun` holds for; 0 for none
    std::int32_t widthInRun = 0;
    std::u16string paramPrefix;
    std::u16string paramSuffix;
};

} // namespace tavrin
