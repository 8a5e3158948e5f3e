#pragma once

#include "platform/propertylists/PropertyList.h"
#include "support/values/PropertyValue.h"

#include <string>

namespace tavrin::plist {

inline constexpr std::string_view binaryMark = "bplist00";

/// Reads a binary list. Every offset, length and reference is checked; depth, number of values and the bytes
/// that shared objects unfold to are bounded.
PropertyList::Result readBinary(std::string_view bytes);

/// Reads an XML list. Strict: no entity declarations, no elements or attributes of other kinds, every key
/// with a value, no key twice. Errors tell the line.
PropertyList::Result readXml(std::string_view bytes);

std::string writeXml(const PropertyValue& value);

/// Why the value cannot be written so that it reads back the same; empty when it can.
std::string obstacleToWriting(const PropertyValue& value);

} // namespace tavrin::plist
