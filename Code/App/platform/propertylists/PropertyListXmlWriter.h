#pragma once

#include "support/values/PropertyValue.h"

#include <string>

namespace tavrin::plist {

std::string writeXml(const PropertyValue& value);

/// Why the value cannot be written so that it reads back the same; empty when it can.
std::string obstacleToWriting(const PropertyValue& value);

} // namespace tavrin::plist
