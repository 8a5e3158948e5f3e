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

  protected:
    explicit SequenceAction(Place place) : placement(place) {}
    /// Adds the rows of the place, behind those of the sequence. A new name has texts around the sequence, of
    /// which `prefix` is the first.
    void addPlacementParameters(std::u16string_view prefix = u"");

    /// The text of the item, valid until the next call; null where there is none, so that the name stays.
    [[nodiscard]] virtual const std::u16string* textFor(const InputContext& input) = 0;

    void prepareParameters() override;
    void processName(std::u16string_view fragment, std::u16string& result) final;

  private:
    TextPlacement placement;
    std::u16string paramPrefix;
    std::u16string paramSuffix;
};

} // namespace tavrin
