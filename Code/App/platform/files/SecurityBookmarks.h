#pragma once

#include "support/values/PropertyValue.h"

#include <optional>
#include <string>

namespace tavrin {

/// What a system with security-scoped bookmarks can do. An address is the absolute path of a file, in bytes.
/// Any thread.
class SecurityBookmarks {
  public:
    virtual ~SecurityBookmarks() = default;
    [[nodiscard]] virtual std::optional<PropertyData> bookmarkDataFor(const std::string& address) = 0;
    [[nodiscard]] virtual std::optional<std::string> addressOf(const PropertyData& bookmark) = 0;
    virtual bool startAccessing(const std::string& address) = 0;
    virtual void stopAccessing(const std::string& address) = 0;
};

} // namespace tavrin
