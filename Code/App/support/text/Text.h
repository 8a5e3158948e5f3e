#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Text is UTF-16; every length and position counts UTF-16 code units unless a function says composed
/// character sequences. A byte of a file name that is not part of well-formed UTF-8 is held as the lone
/// surrogate U+DC00 + byte (U+DC80 to U+DCFF). All functions are pure and safe from any thread; the locale
/// is always the root locale. ICU does not appear in this interface.
namespace tavrin::text {

/// Decodes file-name bytes. Never fails: undecodable bytes become lone surrogates. fromBytes and toBytes
/// are each other's inverse for every byte string.
std::u16string fromBytes(std::string_view bytes);
/// The same, into a buffer that the caller reuses.
void fromBytes(std::string_view bytes, std::u16string& into);

/// The exact inverse of fromBytes. Absent when the text holds a lone surrogate that stands for no byte, or
/// surrogate escapes that would form well-formed UTF-8: such a text cannot be a file name.
[[nodiscard]] std::optional<std::string> toBytes(std::u16string_view text);
/// The same into a reused buffer; false where toBytes is absent (the buffer's content is then unspecified).
[[nodiscard]] bool toBytes(std::u16string_view text, std::string& into);

/// UTF-8 for display and messages: escapes come out as their bytes, any other lone surrogate as U+FFFD.
std::string toUtf8(std::u16string_view text);

/// Decodes what another program wrote: UTF-8, or Mac Roman if the bytes are not UTF-8 from end to end.
std::u16string fromUtf8OrMacRoman(std::string_view bytes);
/// Of a character set of one byte each, by its registered name.
std::u16string fromCharset(std::string_view bytes, const char* charset);

bool isAscii(std::u16string_view text);

/// Unicode normalization forms C and D (UAX #15). Lone surrogates are kept.
std::u16string precomposed(std::u16string_view text);
std::u16string decomposed(std::u16string_view text);
bool isPrecomposed(std::u16string_view text);
/// Whether both are equal in form C.
bool canonicallyEqual(std::u16string_view a, std::u16string_view b);

/// Full case mappings of the Unicode standard, root locale: a character may become several.
std::u16string uppercased(std::u16string_view text);
std::u16string lowercased(std::u16string_view text);
std::u16string caseFolded(std::u16string_view text);
/// Lower-cases UTF-8 file-name bytes into a reused buffer, escapes untouched: lowercased without the round
/// trip for ASCII.
void lowercaseBytes(std::string_view bytes, std::string& into);
/// Canonical equivalence after full case folding.
bool equalIgnoringCase(std::u16string_view a, std::u16string_view b);

/// Order by code point (that is, by the UTF-8 bytes); negative, 0 or positive.
int compareByCodePoint(std::u16string_view a, std::u16string_view b);

/// Canonical decomposition with nonspacing marks (Mn) dropped; the result stays decomposed.
std::u16string withoutDiacritics(std::u16string_view text);

void replaceUnit(std::u16string& text, char16_t from, char16_t to);

/// The end of the composed character sequence (extended grapheme cluster, UAX #29, root locale) that begins
/// at `start`; `start` must be an edge of one and less than the length.
std::size_t composedSequenceEnd(std::u16string_view text, std::size_t start);
/// All composed character sequences in order, as views into `text`.
std::vector<std::u16string_view> composedSequences(std::u16string_view text);
/// The first one, or an empty view.
std::u16string_view firstComposedSequence(std::u16string_view text);

/// Classes by Unicode general category. A lone surrogate is in none.
bool isLetter(char32_t c);              ///< L*, M*
bool isMark(char32_t c);                ///< M*
bool isUppercaseLetter(char32_t c);     ///< Lu, Lt
bool isLowercaseLetter(char32_t c);     ///< Ll
bool isWhitespaceOrNewline(char32_t c); ///< Z*, U+0009 to U+000D, U+0085
bool isPunctuation(char32_t c);         ///< P*
bool isDecimalDigit(char32_t c);        ///< Nd
bool isControl(char32_t c);             ///< Cc, Cf

/// The integer at the start of a text: white space skipped, one sign, ASCII digits, the rest ignored, none
/// is 0; saturates at the limits of 32 bits.
std::int32_t intValue(std::u16string_view text);

/// Literals of code for messages: ASCII or UTF-8 source text.
std::u16string fromUtf8(std::string_view utf8);

/// Whether bytes are well-formed UTF-8 (RFC 3629).
[[nodiscard]] bool isUtf8(std::string_view bytes);

/// Whether a text made from bytes holds an escape for one that could not be decoded: a low surrogate that is
/// no half of a pair.
[[nodiscard]] bool hasEscape(std::u16string_view text);

/// The edges of all composed character sequences of a text, 0 and the length included, into a reused
/// buffer. An empty text has the one edge 0.
void sequenceEdges(std::u16string_view text, std::vector<std::size_t>& edges);

} // namespace tavrin::text
