#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// A glob that cannot be understood, or is too long. The text is a sentence without a full stop.
class GlobError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// A pattern for names and paths of the shell's kind: `*` and `?` without "/", `**` with it, `[a-z]`,
/// `[!a-z]`, `[[:digit:]]`, `{one,other}`, and `\` in front of a character that is meant itself. `**` and a
/// slash behind it stand for no folder too. The case of letters counts, and a dot at the beginning is a
/// character like others. A byte that is not UTF-8 is one character. Matching takes a time that is linear in
/// the length of the text, whatever the pattern, and makes no copies of it for braces.
class Glob {
  public:
    /// The pattern in bytes, at most 20,000. Throws GlobError.
    explicit Glob(std::string_view pattern);

    /// It has a "/" besides those at its end, so that it is meant for paths, else for names.
    [[nodiscard]] bool isForPaths() const { return hasSlash; }
    /// It ends with "/", which is meant for folders alone.
    [[nodiscard]] bool isForFolders() const { return endsWithSlash; }
    /// Whether all of the text fits. Any thread.
    [[nodiscard]] bool matches(std::u32string_view text) const;

    /// Decodes bytes as `matches` wants them, into a buffer that the caller uses again.
    static void decode(std::string_view bytes, std::u32string& into);

  private:
    class Parser;
    class Walk;

    enum class Kind : std::uint8_t { character, any, set, run, runOfAll, fork, jump, end };
    /// A state; those that take a character lead to the one behind them.
    struct State {
        Kind kind = Kind::end;
        char32_t character = 0;
        std::uint32_t other = 0; ///< of a fork and a jump; the index of a set
    };
    struct Range {
        char32_t first;
        char32_t last;
    };
    struct Set {
        bool isNegated = false;
        std::vector<Range> ranges;
        std::vector<bool (*)(char32_t)> classes;
        [[nodiscard]] bool contains(char32_t c) const;
    };

    [[nodiscard]] bool takes(const State& state, char32_t c) const;

    std::vector<State> states;
    std::vector<Set> sets;
    std::size_t leastLength = 0; ///< of a text that fits
    bool hasSlash = false;
    bool endsWithSlash = false;
};

} // namespace tavrin
