#pragma once

#include "platform/propertylists/PropertyList.h"

namespace tavrin::plist {

/// Reads an XML list. Strict: no entity declarations, no elements or attributes of other kinds, every key
/// with a value, no key twice. Errors tell the line.
PropertyList::Result readXml(std::string_view bytes);

} // namespace tavrin::plist
