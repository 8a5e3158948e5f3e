#pragma once

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

} // namespace tavrin::display
