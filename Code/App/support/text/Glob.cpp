#include "support/text/Glob.h"

#include "support/text/Text.h"

#include <fmt/format.h>
#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <utility>

namespace tavrin {

namespace {

constexpr std::size_t mostBytes = 20000;
constexpr int mostBraces = 100;
constexpr std::uint32_t nowhere = std::numeric_limits<std::uint32_t>::max();

template <UBool (*Ask)(UChar32)> bool isOfClass(char32_t c) { return Ask(static_cast<UChar32>(c)) != 0; }

struct NamedClass {
    std::u32string_view name;
    bool (*contains)(char32_t);
};
constexpr std::array<NamedClass, 10> namedClasses{{{U"alpha", isOfClass<u_isalpha>},
                                                   {U"digit", isOfClass<u_isdigit>},
                                                   {U"alnum", isOfClass<u_isalnum>},
                                                   {U"upper", isOfClass<u_isupper>},
                                                   {U"lower", isOfClass<u_islower>},
                                                   {U"space", isOfClass<u_isspace>},
                                                   {U"blank", isOfClass<u_isblank>},
                                                   {U"punct", isOfClass<u_ispunct>},
                                                   {U"xdigit", isOfClass<u_isxdigit>},
                                                   {U"cntrl", isOfClass<u_iscntrl>}}};

} // namespace

void Glob::decode(std::string_view bytes, std::u32string& into) {
    into.clear();
    if (std::ranges::all_of(bytes, [](char c) { return static_cast<unsigned char>(c) < 0x80; })) {
        into.append(bytes.begin(), bytes.end());
        return;
    }
    const std::u16string units = text::fromBytes(bytes);
    for (std::size_t at = 0; at < units.size();) {
        char32_t c = 0;
        U16_NEXT(units.data(), at, units.size(), c);
        into += c;
    }
}

bool Glob::Set::contains(char32_t c) const {
    const bool isListed =
        std::ranges::any_of(ranges,
                            [c](const Range& range) { return range.first <= c && c <= range.last; }) ||
        std::ranges::any_of(classes, [c](const auto& contains) { return contains(c); });
    return isListed != isNegated;
}

/// Turns the pattern into states from its beginning to its end; braces become forks.
class Glob::Parser {
  public:
    Parser(Glob& into, std::u32string_view text) : glob(into), pattern(text) {}

    void run() {
        glob.leastLength = sequence();
        add({Kind::end});
    }

  private:
    std::uint32_t add(const State& state) {
        glob.states.push_back(state);
        return static_cast<std::uint32_t>(glob.states.size() - 1);
    }
    [[nodiscard]] bool isAt(char32_t c, std::size_t offset = 0) const {
        return at + offset < pattern.size() && pattern[at + offset] == c;
    }

    /// Each answers the least length of what it stands for.
    std::size_t sequence();
    std::size_t stars();
    std::size_t braces();
    std::size_t brackets();
    std::size_t literal();

    /// A character of a set, or nothing after a named class has been taken.
    std::optional<char32_t> member(Set& set);
    bool namedClass(Set& set);

    Glob& glob;
    std::u32string_view pattern;
    std::size_t at = 0;
    int depth = 0;
};

std::size_t Glob::Parser::sequence() {
    std::size_t length = 0;
    while (at < pattern.size() && !(depth > 0 && (isAt(U',') || isAt(U'}')))) {
        switch (pattern[at]) {
        case U'*':
            length += stars();
            break;
        case U'?':
            add({Kind::any});
            ++at;
            ++length;
            break;
        case U'[':
            length += brackets();
            break;
        case U'{':
            length += braces();
            break;
        default:
            length += literal();
        }
    }
    return length;
}

std::size_t Glob::Parser::stars() {
    const bool beginsComponent = at == 0 || pattern[at - 1] == U'/' || pattern[at - 1] == U'{' ||
                                 (depth > 0 && pattern[at - 1] == U',');
    const std::size_t start = at;
    while (isAt(U'*'))
        ++at;
    if (at - start == 1) {
        add({Kind::run});
    } else if (beginsComponent && isAt(U'/')) {
        const std::uint32_t fork = add({Kind::fork});
        add({Kind::runOfAll});
        literal();
        glob.states[fork].other = static_cast<std::uint32_t>(glob.states.size());
    } else {
        add({Kind::runOfAll});
    }
    return 0;
}

std::size_t Glob::Parser::braces() {
    if (++depth > mostBraces)
        throw GlobError(fmt::format("braces are nested more than {} deep", mostBraces));
    std::size_t least = std::numeric_limits<std::size_t>::max();
    std::vector<std::uint32_t> ends;
    do {
        ++at; // the brace or a comma
        const std::uint32_t fork = add({Kind::fork, 0, nowhere});
        least = std::min(least, sequence());
        ends.push_back(add({Kind::jump}));
        if (isAt(U','))
            glob.states[fork].other = static_cast<std::uint32_t>(glob.states.size());
    } while (isAt(U','));
    if (!isAt(U'}'))
        throw GlobError("a \"{\" is without its \"}\"");
    ++at;
    --depth;
    for (const std::uint32_t end : ends)
        glob.states[end].other = static_cast<std::uint32_t>(glob.states.size());
    return least;
}

std::size_t Glob::Parser::brackets() {
    Set set;
    ++at;
    if (isAt(U'!') || isAt(U'^')) {
        set.isNegated = true;
        ++at;
    }
    for (bool isFirst = true; isFirst || !isAt(U']'); isFirst = false) {
        const std::optional<char32_t> first = member(set);
        if (!first)
            continue;
        Range range{*first, *first};
        if (isAt(U'-') && at + 1 < pattern.size() && !isAt(U']', 1)) {
            ++at;
            range.last = member(set).value_or(0);
        }
        if (range.last < range.first)
            throw GlobError("a range between \"[\" and \"]\" runs backwards");
        set.ranges.push_back(range);
    }
    ++at;
    add({Kind::set, 0, static_cast<std::uint32_t>(glob.sets.size())});
    glob.sets.push_back(std::move(set));
    return 1;
}

std::optional<char32_t> Glob::Parser::member(Set& set) {
    if (isAt(U'[') && isAt(U':', 1) && namedClass(set))
        return std::nullopt;
    if (isAt(U'\\'))
        ++at;
    if (at >= pattern.size())
        throw GlobError("a \"[\" is without its \"]\"");
    return pattern[at++];
}

bool Glob::Parser::namedClass(Set& set) {
    const std::size_t end = pattern.find(U":]", at + 2);
    if (end == std::u32string_view::npos)
        return false;
    const std::u32string_view name = pattern.substr(at + 2, end - at - 2);
    const auto found = std::ranges::find(namedClasses, name, &NamedClass::name);
    if (found == namedClasses.end())
        throw GlobError("between \"[:\" and \":]\" stands one of alpha, digit, alnum, upper, lower, space, "
                        "blank, punct, xdigit, cntrl");
    set.classes.push_back(found->contains);
    at = end + 2;
    return true;
}

std::size_t Glob::Parser::literal() {
    if (isAt(U'\\') && ++at == pattern.size())
        throw GlobError("a \"\\\" stands at the end, with nothing that it could be for");
    glob.hasSlash |= pattern[at] == U'/';
    add({Kind::character, pattern[at++]});
    return 1;
}

Glob::Glob(std::string_view pattern) {
    if (pattern.empty())
        throw GlobError("the glob is empty");
    if (pattern.size() > mostBytes)
        throw GlobError(fmt::format("the glob is longer than {} bytes", mostBytes));
    while (pattern.size() > 1 && pattern.back() == '/' && !pattern.ends_with("\\/")) {
        endsWithSlash = true;
        pattern.remove_suffix(1);
    }
    hasSlash = pattern.front() == '/'; // it is anchored by that
    if (hasSlash)
        pattern.remove_prefix(1);
    std::u32string text;
    decode(pattern, text);
    Parser(*this, text).run();
}

/// All states that what has been read can have led to.
class Glob::Walk {
  public:
    explicit Walk(const Glob& of) : glob(of) {
        if (kept.marks.size() < glob.states.size())
            kept.marks.resize(glob.states.size(), 0);
        begin(kept.now);
        enter(0, kept.now);
    }

    /// False when nothing can follow.
    bool step(char32_t c) {
        begin(kept.next);
        for (const std::uint32_t number : kept.now) {
            const State& state = glob.states[number];
            if (glob.takes(state, c))
                enter(state.kind == Kind::run || state.kind == Kind::runOfAll ? number : number + 1,
                      kept.next);
        }
        kept.now.swap(kept.next);
        return !kept.now.empty();
    }
    [[nodiscard]] bool isAtEnd() const { return kept.marks[glob.states.size() - 1] == kept.round; }

  private:
    struct Scratch {
        std::vector<std::uint64_t> marks; ///< the round in which a state was last entered
        std::uint64_t round = 0;
        std::vector<std::uint32_t> now, next, open;
    };

    void begin(std::vector<std::uint32_t>& list) {
        ++kept.round;
        list.clear();
    }

    /// The state, and all that it leads to without a character.
    void enter(std::uint32_t first, std::vector<std::uint32_t>& list) {
        kept.open.push_back(first);
        while (!kept.open.empty()) {
            std::uint32_t number = kept.open.back();
            kept.open.pop_back();
            while (number != nowhere && std::exchange(kept.marks[number], kept.round) != kept.round) {
                const State& state = glob.states[number];
                if (state.kind == Kind::jump) {
                    number = state.other;
                    continue;
                }
                if (state.kind == Kind::fork)
                    kept.open.push_back(state.other);
                else
                    list.push_back(number);
                const bool leadsOn =
                    state.kind == Kind::fork || state.kind == Kind::run || state.kind == Kind::runOfAll;
                number = leadsOn ? number + 1 : nowhere;
            }
            while (!kept.open.empty() && kept.open.back() == nowhere)
                kept.open.pop_back();
        }
    }

    const Glob& glob;
    static thread_local Scratch kept; // between two names, so that none is allocated
};

thread_local Glob::Walk::Scratch Glob::Walk::kept;

bool Glob::takes(const State& state, char32_t c) const {
    switch (state.kind) {
    case Kind::character:
        return c == state.character;
    case Kind::any:
    case Kind::run:
        return c != U'/';
    case Kind::set:
        return c != U'/' && sets[state.other].contains(c);
    case Kind::runOfAll:
        return true;
    case Kind::fork:
    case Kind::jump:
    case Kind::end:
        break;
    }
    return false;
}

bool Glob::matches(std::u32string_view text) const {
    if (text.size() < leastLength)
        return false;
    Walk walk(*this);
    return std::ranges::all_of(text, [&](char32_t c) { return walk.step(c); }) && walk.isAtEnd();
}

} // namespace tavrin
