#pragma once

#include "support/values/PropertyValue.h"

#include <string>
#include <string_view>
#include <variant>

namespace tavrin {

/// Why a property list could not be read or written, in one sentence for the user.
struct PropertyListError {
    std::string message;
};

/// Strict reading and writing of property lists. XML and binary ("bplist00") lists are read, XML is written.
/// Depth is bounded at 64, size at 64 MiB. Text that XML cannot hold is written as data and read back by
/// the loose text conversion below. Numbers are free of the locale.
struct PropertyList {
    using Result = std::variant<PropertyValue, PropertyListError>;

    static Result fromBytes(std::string_view bytes);
    static Result read(const std::string& path);
    /// The bytes of a file that may be a list; returns why they can't be had, empty where they can.
    [[nodiscard]] static std::string readBytes(const std::string& path, std::string& bytes);

    static std::string toXml(const PropertyValue& value);
    using Written = std::variant<std::monostate, PropertyListError>;
    /// Writes beside the target and renames over it; false and the error text on failure, the target intact.
    static Written writeAtomically(const PropertyValue& value, const std::string& path);
    /// The same for a file that must not be there yet: what has the name is never replaced.
    static Written writeNew(const PropertyValue& value, const std::string& path);
};

/// The text of a value that is a text, or data that stands for a text XML cannot hold.
std::optional<std::u16string> textOrData(const PropertyValue& value);

} // namespace tavrin
