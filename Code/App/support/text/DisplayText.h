#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Names as they can be shown.
namespace tavrin::display {

/// Appends the text in quotation marks as JSON has it: control characters, and units that stand for bytes
/// that are not UTF-8, as escapes; everything else in UTF-8.
void appendJson(std::u16string_view text, std::string& into);

/// The bytes with everything that would act on a terminal instead of showing up written as an escape: control
/// characters, bytes that are not UTF-8, and marks that turn the direction of writing.
std::string visible(std::string_view bytes);
/// The same of a text.
std::string visible(std::u16string_view text);

/// How many columns of a terminal the text takes when it is shown as it is: none for marks that combine with
/// the character before them, two for what East Asian fonts draw wide. Where terminals differ (emoji that are
/// made of several) it is the greater number.
std::size_t columns(std::u16string_view text);

} // namespace tavrin::display
