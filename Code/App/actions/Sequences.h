#pragma once

#include "support/text/Text.h"
#include "support/text/TextUnits.h"

#include <array>
#include <string>
#include <string_view>
#include <unordered_map>

namespace tavrin {

/// The slow way of forEachSequence, apart so that its loop over plain names stays small.
template <typename Visit>
[[gnu::noinline]] void forEachJoinedSequence(std::u16string_view text, const Visit& visit) {
    for (const auto sequence : text::composedSequences(text))
        visit(sequence);
}

/// Calls `visit` with each composed character sequence of a text, in order.
template <typename Visit> void forEachSequence(std::u16string_view text, const Visit& visit) {
    // Without combining marks each unit is a sequence, but for CR LF.
    if (!text::units::allBelowFirstCombining(text) || text.find(u'\r') != text.npos)
        return forEachJoinedSequence(text, visit);
    for (std::size_t i = 0; i < text.size(); ++i)
        visit(std::u16string_view(text.data() + i, 1));
}

/// Remembers a value for each composed character sequence: of ASCII all, of others a bounded number.
template <typename Value> class SequenceMemory {
  public:
    /// Forgets everything; `find` gives the value of a sequence.
    template <typename Find> void refill(Find find) {
        for (std::size_t unit = 0; unit < ofAscii.size(); ++unit)
            ofAscii[unit] = find(std::u16string(1, static_cast<char16_t>(unit)));
        ofOthers.clear();
    }

    /// The value of a sequence, by `find` the first time.
    template <typename Find> Value valueFor(std::u16string_view sequence, Find find) {
        const bool isAscii = sequence.size() == 1 && sequence.front() < ofAscii.size();
        return isAscii ? ofAscii[sequence.front()] : valueForOther(sequence, find);
    }

  private:
    /// Apart, so that the loops over plain names stay small.
    template <typename Find> [[gnu::noinline]] Value valueForOther(std::u16string_view sequence, Find find) {
        constexpr std::size_t mostRemembered = 4096;
        const std::u16string key(sequence);
        if (const auto known = ofOthers.find(key); known != ofOthers.end())
            return known->second;
        if (ofOthers.size() >= mostRemembered)
            ofOthers.clear();
        return ofOthers.emplace(key, find(sequence)).first->second;
    }

    std::array<Value, 128> ofAscii{};
    std::unordered_map<std::u16string, Value> ofOthers;
};

} // namespace tavrin
