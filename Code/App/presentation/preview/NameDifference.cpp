#include "presentation/preview/NameDifference.h"

#include "support/text/Text.h"

#include <algorithm>
#include <cstdint>

namespace tavrin {

namespace {

using Sequences = std::vector<std::u16string_view>;

enum class Kind { letter, digit, other };

Kind kindOf(std::u16string_view sequence) {
    const char16_t unit = sequence.front();
    return unit >= u'0' && unit <= u'9' ? Kind::digit : text::isLetter(unit) ? Kind::letter : Kind::other;
}

/// Which sequences of one name are kept, and with which of the other they go together.
struct Match {
    std::size_t before;
    std::size_t after;
};

/// Longer middles than this are not compared in detail: a name of a file is shorter.
constexpr std::size_t longestMiddle = 300;

class Comparison {
  public:
    Comparison(std::u16string_view oldName, std::u16string_view newName)
        : before(text::composedSequences(oldName)), after(text::composedSequences(newName)) {}

    NameDifference run() {
        findEnds();
        if (!isMereInsertion() && !isMereRemoval())
            giveCutRunsBack();
        for (std::size_t i = 0; i < start; ++i)
            matches.push_back({i, i});
        findMiddle();
        for (std::size_t i = end; i > 0; --i)
            matches.push_back({before.size() - i, after.size() - i});
        NameDifference result;
        if (keepsAnythingInFrontOfExtension()) {
            result.removed = gaps(before, &Match::before);
            result.added = gaps(after, &Match::after);
        }
        return result;
    }

  private:
    void findEnds() {
        const std::size_t shorter = std::min(before.size(), after.size());
        while (start < shorter && before[start] == after[start])
            ++start;
        while (end < shorter - start && before[before.size() - 1 - end] == after[after.size() - 1 - end])
            ++end;
    }

    [[nodiscard]] bool isMereInsertion() const { return start + end == before.size(); }
    [[nodiscard]] bool isMereRemoval() const { return start + end == after.size(); }

    /// A border within a run of letters or digits is moved to the edge of the run where less than half of it
    /// would stay: half a word tells nothing. A run that is whole in one of the names is no half.
    void giveCutRunsBack() {
        const auto fromStart = [this](const Sequences& name) { return runsAround(name, start, false); };
        const auto fromEnd = [this](const Sequences& name) {
            return runsAround(name, name.size() - end, true);
        };
        if (start > 0)
            start -= cutPart(fromStart(before), fromStart(after));
        if (end > 0)
            end -= cutPart(fromEnd(before), fromEnd(after));
    }

    /// The run that a border lies in: how much of it is kept, and how much is not.
    struct CutRun {
        std::size_t kept = 0;
        std::size_t lost = 0;
    };

    [[nodiscard]] CutRun runsAround(const Sequences& name, std::size_t border, bool keepsBehind) const {
        const Kind kind = kindOf(name[keepsBehind ? border : border - 1]);
        if (kind == Kind::other)
            return {};
        std::size_t left = border;
        while (left > (keepsBehind ? start : 0) && kindOf(name[left - 1]) == kind)
            --left;
        std::size_t right = border;
        while (right < (keepsBehind ? name.size() : name.size() - end) && kindOf(name[right]) == kind)
            ++right;
        const std::size_t inFront = border - left;
        const std::size_t behind = right - border;
        return keepsBehind ? CutRun{behind, inFront} : CutRun{inFront, behind};
    }

    [[nodiscard]] static std::size_t cutPart(const CutRun& inBefore, const CutRun& inAfter) {
        const bool isCutInBoth = inBefore.lost > 0 && inAfter.lost > 0;
        return isCutInBoth && std::max(inBefore.lost, inAfter.lost) > inBefore.kept ? inBefore.kept : 0;
    }

    /// The longest common sequence of the middles, without the scraps.
    void findMiddle() {
        const std::size_t rows = before.size() - start - end;
        const std::size_t columns = after.size() - start - end;
        if (rows == 0 || columns == 0 || rows > longestMiddle || columns > longestMiddle)
            return;
        std::vector<std::uint16_t> lengths((rows + 1) * (columns + 1), 0);
        const auto at = [&](std::size_t r, std::size_t c) -> std::uint16_t& {
            return lengths[r * (columns + 1) + c];
        };
        for (std::size_t r = rows; r-- > 0;)
            for (std::size_t c = columns; c-- > 0;)
                at(r, c) = before[start + r] == after[start + c]
                               ? static_cast<std::uint16_t>(at(r + 1, c + 1) + 1)
                               : std::max(at(r + 1, c), at(r, c + 1));
        std::vector<Match> part;
        for (std::size_t r = 0, c = 0; r < rows && c < columns;) {
            if (before[start + r] == after[start + c]) {
                part.push_back({start + r++, start + c++});
                continue;
            }
            takePart(part);
            at(r + 1, c) >= at(r, c + 1) ? ++r : ++c;
        }
        takePart(part);
    }

    /// An inner part counts when it is long, or made of whole runs.
    void takePart(std::vector<Match>& part) {
        const bool isLong = part.size() >= 5;
        const bool isWhole = part.size() >= 2 && beginsRun(part.front()) && endsRun(part.back());
        if (isLong || isWhole)
            matches.insert(matches.end(), part.begin(), part.end());
        part.clear();
    }

    static bool isBorder(const Sequences& name, std::size_t left) {
        return left + 1 >= name.size() || kindOf(name[left]) != kindOf(name[left + 1]);
    }
    [[nodiscard]] bool beginsRun(const Match& match) const {
        return (match.before == 0 || isBorder(before, match.before - 1)) &&
               (match.after == 0 || isBorder(after, match.after - 1));
    }
    [[nodiscard]] bool endsRun(const Match& match) const {
        return isBorder(before, match.before) && isBorder(after, match.after);
    }

    [[nodiscard]] bool keepsAnythingInFrontOfExtension() const {
        const auto dot = std::find(before.rbegin(), before.rend(), std::u16string_view(u"."));
        const std::size_t extension =
            dot == before.rend() ? before.size() : static_cast<std::size_t>(before.rend() - dot) - 1;
        const bool hasBase = extension > 0;
        return std::any_of(matches.begin(), matches.end(),
                           [&](const Match& match) { return !hasBase || match.before < extension; });
    }

    /// The stretches of a name that no match covers.
    [[nodiscard]] std::vector<NameDifference::Span> gaps(const Sequences& name,
                                                         std::size_t Match::*side) const {
        std::vector<NameDifference::Span> spans;
        std::size_t unit = 0;
        std::size_t next = 0;
        for (std::size_t i = 0; i < name.size(); ++i) {
            const bool isKept = next < matches.size() && matches[next].*side == i;
            if (isKept)
                ++next;
            else if (!spans.empty() && spans.back().start + spans.back().length == unit)
                spans.back().length += name[i].size();
            else
                spans.push_back({unit, name[i].size()});
            unit += name[i].size();
        }
        return spans;
    }

    Sequences before;
    Sequences after;
    std::size_t start = 0; ///< sequences that both names begin with
    std::size_t end = 0;   ///< and end with
    std::vector<Match> matches;
};

} // namespace

NameDifference NameDifference::between(std::u16string_view before, std::u16string_view after) {
    return Comparison(before, after).run();
}

} // namespace tavrin
