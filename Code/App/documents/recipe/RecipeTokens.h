#pragma once

#include "support/text/TextSearch.h"
#include "support/values/PropertyValue.h"

#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

/// What is wrong at a place of a recipe's text, in UTF-16 code units; thrown while it is read. Texts are
/// UTF-8 and may quote the recipe raw.
struct RecipeMistake {
    TextRange place;
    std::string message;
    std::string hint = {}; ///< what was meant, or how it is written
};

/// A run of pieces without a blank between them.
struct RecipeToken {
    TextRange place;
    std::u16string text;       ///< what the pieces say
    std::size_t bareUnits = 0; ///< how much of `text` comes in front of the first quote
    bool isQuoted = false;     ///< holds a quote, so it is no word of the language
    bool isSeparator = false;  ///< `|`, `;` or a line break
    bool isEnd = false;        ///< nothing is left

    [[nodiscard]] bool isText() const { return !isSeparator && !isEnd; }
};

/// `s/…/…/flags`, and with `m`.
struct RecipeSlash {
    TextRange place;
    char letter = 0;
    std::u16string pattern;
    std::u16string replacement;
    TextRange replacementPlace;
    std::u16string flags;
    std::size_t flagsStart = 0;
};

/// Reads a recipe from its beginning to its end, a token at a time. The text must outlive the object.
class RecipeLexer {
  public:
    explicit RecipeLexer(std::u16string_view recipe);

    [[nodiscard]] std::size_t position() const { return at; }
    void goTo(std::size_t position) { at = position; }

    /// And comments.
    void skipBlanks();
    /// The next token, behind blanks and comments. Throws RecipeMistake.
    RecipeToken next();
    /// The sed-like form if it begins here, behind blanks and comments.
    std::optional<RecipeSlash> slash();
    /// The key in front of `:=`, if that is what comes next; the value is then to be read with `literal`.
    std::optional<std::u16string> storedKey();
    PropertyValue literal();

  private:
    [[nodiscard]] bool isAt(std::u16string_view text) const { return source.substr(at).starts_with(text); }
    void appendBare(std::u16string& text);
    void appendQuoted(std::u16string& text);
    void appendEscape(std::u16string& text);
    char32_t hexadecimal(std::size_t fewest, std::size_t most);
    std::u16string slashPart(char16_t delimiter, bool unescapes, std::size_t start);
    PropertyValue literal(int depth);
    PropertyValue number();
    template <typename ReadItem> void readList(std::u16string_view end, ReadItem readItem);
    PropertyValue array(int depth);
    PropertyValue dictionary(int depth);
    PropertyValue data();
    PropertyValue date();
    std::u16string quotedText(std::string_view what);
    [[noreturn]] void fail(std::size_t from, std::string message, std::string hint = {}) const;

    std::u16string_view source;
    std::size_t at = 0;
};

namespace recipe {

/// The text in double quotes, so that it comes back as it is and shows nothing that is not there: what is
/// invisible, and what would act on its surroundings, is escaped.
[[nodiscard]] std::u16string quoted(std::u16string_view text);
/// Whether `quoted` would write an escape for it, but for quotes and backslashes.
[[nodiscard]] bool hasInvisible(std::u16string_view text);
/// The value as it stands behind `:=`.
[[nodiscard]] std::u16string literal(const PropertyValue& value);

} // namespace recipe

} // namespace tavrin
