
#include "support/text/Text.h"
#include "support/text/TextIcu.h"
#include "support/text/TextUnits.h"

#include <unicode/ubrk.h>
#include <unicode/uchar.h>

#include <memory>

namespace tavrin::text {
namespace {

/// How a character takes part in sequences.
enum class Joining {
    never,   ///< a control: an edge on both sides, but for CR LF
    alone,   ///< an edge between it and another of this kind
    perhaps, ///< the rules have to look closer
};

Joining joining(char32_t c) {
    if (c < units::firstCombining) {
        const bool isControl = c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0xAD;
        return isControl ? Joining::never : Joining::alone;
    }
    const bool isHan = c >= 0x4E00 && c <= 0x9FFF;
    const bool isHangulSyllable = c >= 0xAC00 && c <= 0xD7A3;
    if (isHan || isHangulSyllable)
        return Joining::alone;
    switch (u_getIntPropertyValue(static_cast<UChar32>(c), UCHAR_GRAPHEME_CLUSTER_BREAK)) {
    case U_GCB_OTHER:
        return Joining::alone;
    case U_GCB_CONTROL:
        return Joining::never;
    }
    return Joining::perhaps;
}

bool isCombiningMark(char16_t unit) { return unit >= 0x0300 && unit <= 0x036F; }

/// Whether an edge is certain between two units below the combining marks.
bool isSimpleEdge(char16_t before, char16_t after) {
    return before < units::firstCombining && after < units::firstCombining &&
           !(before == u'\r' && after == u'\n');
}

std::size_t easyEndByClass(std::u16string_view text, std::size_t start) {
    const char32_t c = units::codePointAt(text, start);
    std::size_t end = start + units::unitCount(c);
    if (end == text.size())
        return end;
    if (c == u'\r' && text[end] == u'\n')
        return end + 1;
    const Joining kind = joining(c);
    if (kind == Joining::never)
        return end;
    if (c < units::firstCombining)
        while (end < text.size() && isCombiningMark(text[end]))
            ++end;
    if (kind != Joining::alone)
        return joining(units::codePointAt(text, end)) == Joining::never ? end : 0;
    return end == text.size() || joining(units::codePointAt(text, end)) != Joining::perhaps ? end : 0;
}

/// The end of the sequence at `start` where no rule needs more than a look at the next characters; 0 if it
/// takes the full rules.
inline std::size_t easyEnd(std::u16string_view text, std::size_t start) {
    if (start + 1 == text.size() || isSimpleEdge(text[start], text[start + 1]))
        return start + 1;
    return easyEndByClass(text, start);
}

/// An edge behind `start`, so that the rules need not look at what follows.
std::size_t someEdgeBehind(std::u16string_view text, std::size_t start) {
    std::size_t edge = start + 1;
    while (edge < text.size() && !isSimpleEdge(text[edge - 1], text[edge]))
        ++edge;
    return edge;
}

struct CloseIterator {
    void operator()(UBreakIterator* iterator) const { ubrk_close(iterator); }
};

/// ICU's rules over a stretch that begins and ends at edges. Opening an iterator takes longer than a
/// thousand names, so each thread keeps one; it is of use until the next call on the thread.
UBreakIterator* iteratorOver(std::u16string_view stretch) {
    UErrorCode status = U_ZERO_ERROR;
    thread_local const std::unique_ptr<UBreakIterator, CloseIterator> iterator(
        ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status));
    icu::check(status, "rules of composed character sequences");
    ubrk_setText(iterator.get(), stretch.data(), icu::length(stretch), &status);
    icu::check(status, "text for composed character sequences");
    return iterator.get();
}

template <typename Take> void eachSequence(std::u16string_view text, Take take) {
    for (std::size_t start = 0; start < text.size();) {
        std::size_t end = easyEnd(text, start);
        if (end != 0) {
            take(start, end);
            start = end;
            continue;
        }
        const std::size_t edge = someEdgeBehind(text, start);
        UBreakIterator* const iterator = iteratorOver(text.substr(start, edge - start));
        for (const std::size_t base = start; start < edge; start = end) {
            end = base + static_cast<std::size_t>(ubrk_next(iterator));
            take(start, end);
        }
    }
}

} // namespace

std::size_t composedSequenceEnd(std::u16string_view text, std::size_t start) {
    if (const std::size_t end = easyEnd(text, start))
        return end;
    const std::size_t edge = someEdgeBehind(text, start);
    return start + static_cast<std::size_t>(ubrk_next(iteratorOver(text.substr(start, edge - start))));
}

void sequenceEdges(std::u16string_view text, std::vector<std::size_t>& edges) {
    edges.assign(1, 0);
    edges.reserve(text.size() + 1);
    eachSequence(text, [&](std::size_t, std::size_t end) { edges.push_back(end); });
}

std::vector<std::u16string_view> composedSequences(std::u16string_view text) {
    std::vector<std::u16string_view> sequences;
    sequences.reserve(text.size());
    eachSequence(text, [&](std::size_t start, std::size_t end) {
        sequences.emplace_back(text.data() + start, end - start);
    });
    return sequences;
}

std::u16string_view firstComposedSequence(std::u16string_view text) {
    return text.empty() ? text : text.substr(0, composedSequenceEnd(text, 0));
}

} // namespace tavrin::text
