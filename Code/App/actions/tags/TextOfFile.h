#pragma once

#include "actions/PrecomposedText.h"
#include "actions/TextPlacements.h"

namespace tavrin {

/// When a placement brings the name into form C, told from the text that the base makes of file and name.
enum class NameComposed { never, beforeText, afterText };

/// A placement of a family whose text depends on the name in hand as well. The base makes the text in
/// `takeText(name, input, output)` and has it for `textToPlace`; where it has none, the name stays as it
/// came.
template <typename Placement, NameComposed composed> class PlacedTextOfFile : public Placement {
  protected:
    void processName(std::u16string_view fragment, const InputContext& input, OutputContext& output,
                     std::u16string& result) override {
        if constexpr (composed == NameComposed::never) {
            this->takeText(fragment, input, output);
            Placement::processName(fragment, input, output, result);
        } else {
            const PrecomposedText inFormC(fragment);
            this->takeText(composed == NameComposed::beforeText ? inFormC.view() : fragment, input, output);
            const bool hasText = this->textToPlace(input).has_value();
            Placement::processName(hasText ? inFormC.view() : fragment, input, output, result);
        }
    }
};

template <typename Base>
using TextAtPosition = PlacedTextOfFile<placement::AtPosition<Base>, NameComposed::never>;

} // namespace tavrin
