#pragma once

#include "platform/propertylists/PropertyList.h"

namespace tavrin::plist {

inline constexpr std::string_view binaryMark = "bplist00";

/// Reads a binary list. Every offset, length and reference is checked; depth, number of values and the bytes
/// that shared objects unfold to are bounded.
PropertyList::Result readBinary(std::string_view bytes);

} // namespace tavrin::plist
