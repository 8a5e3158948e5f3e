#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tavrin {

class PropertyValue;
using PropertyArray = std::vector<PropertyValue>;
/// Keys are UTF-8 and sorted by their bytes.
using PropertyDictionary = std::map<std::string, PropertyValue, std::less<>>;

/// A point in time as property lists hold it: seconds since 2001-01-01 00:00:00 UTC.
struct PropertyDate {
    double secondsSince2001 = 0;
    auto operator<=>(const PropertyDate&) const = default;
};

/// Bytes.
struct PropertyData {
    std::vector<std::uint8_t> bytes;
    auto operator<=>(const PropertyData&) const = default;
};

/// A value of a property list: boolean, 64-bit integer, double, text (UTF-16, may hold lone surrogates),
/// date, data, array or dictionary. There is no null: absence is std::optional.
class PropertyValue {
  public:
    using Variant = std::variant<bool, std::int64_t, double, std::u16string, PropertyDate, PropertyData,
                                 PropertyArray, PropertyDictionary>;

    PropertyValue(bool value) : content(value) {}
    PropertyValue(int value) : content(std::int64_t{value}) {}
    PropertyValue(std::int64_t value) : content(value) {}
    PropertyValue(double value) : content(value) {}
    PropertyValue(std::u16string value) : content(std::move(value)) {}
    PropertyValue(const char16_t* value) : content(std::u16string(value)) {}
    PropertyValue(PropertyDate value) : content(value) {}
    PropertyValue(PropertyData value) : content(std::move(value)) {}
    PropertyValue(PropertyArray value) : content(std::move(value)) {}
    PropertyValue(PropertyDictionary value) : content(std::move(value)) {}
    /// A pointer is never meant to become a boolean.
    PropertyValue(const void*) = delete;

    [[nodiscard]] const Variant& variant() const { return content; }

    /// The value if it is of exactly this type, else null. Valid as long as this value.
    [[nodiscard]] const bool* asBoolean() const { return std::get_if<bool>(&content); }
    [[nodiscard]] const std::int64_t* asInteger() const { return std::get_if<std::int64_t>(&content); }
    [[nodiscard]] const double* asReal() const { return std::get_if<double>(&content); }
    [[nodiscard]] const std::u16string* asText() const { return std::get_if<std::u16string>(&content); }
    [[nodiscard]] const PropertyDate* asDate() const { return std::get_if<PropertyDate>(&content); }
    [[nodiscard]] const PropertyData* asData() const { return std::get_if<PropertyData>(&content); }
    [[nodiscard]] const PropertyArray* asArray() const { return std::get_if<PropertyArray>(&content); }
    [[nodiscard]] const PropertyDictionary* asDictionary() const {
        return std::get_if<PropertyDictionary>(&content);
    }
    [[nodiscard]] PropertyArray* asArray() { return std::get_if<PropertyArray>(&content); }
    [[nodiscard]] PropertyDictionary* asDictionary() { return std::get_if<PropertyDictionary>(&content); }

    [[nodiscard]] bool isNumber() const { return content.index() <= 2; }

    bool operator==(const PropertyValue& other) const { return content == other.content; }

  private:
    Variant content;
};

/// The loose conversions, all in one place.
/// 32-bit integer of a value: texts by text::intValue; reals cut towards zero and saturate, NaN is 0;
/// booleans 0 and 1; integers saturate; every other kind 0.
std::int32_t intValue(const PropertyValue& value);
/// True for a true boolean, a number other than 0, and a text whose intValue is not 0 or that begins with
/// Y, y, T or t (after white space).
bool boolValue(const PropertyValue& value);
/// A text as it stands, a number in decimal, everything else empty.
std::u16string textValue(const PropertyValue& value);

/// The entry under `key`, or null. Valid as long as the dictionary is not changed.
const PropertyValue* find(const PropertyDictionary& dictionary, std::string_view key);

/// A readable one-line form for logs and reports.
std::string description(const PropertyValue& value);

} // namespace tavrin
