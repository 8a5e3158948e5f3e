#include "support/values/PropertyValue.h"

#include "support/text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <type_traits>

namespace tavrin {
namespace {

using IntLimits = std::numeric_limits<std::int32_t>;

template <typename... Functions> struct Overloaded : Functions... { using Functions::operator()...; };
template <typename... Functions> Overloaded(Functions...) -> Overloaded<Functions...>;

std::int32_t saturated(double value) {
    if (value != value)
        return 0;
    return static_cast<std::int32_t>(std::clamp<double>(value, IntLimits::min(), IntLimits::max()));
}

bool isTrueText(std::u16string_view text) {
    if (text::intValue(text) != 0)
        return true;
    const auto first = std::find_if_not(text.begin(), text.end(),
                                        [](char16_t unit) { return text::isWhitespaceOrNewline(unit); });
    return first != text.end() && std::u16string_view(u"YyTt").find(*first) != std::u16string_view::npos;
}

std::string quoted(std::string_view text) {
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\')
            result += '\\';
        if (static_cast<unsigned char>(c) < 0x20)
            result += fmt::format("\\x{:02x}", c);
        else
            result += c;
    }
    return result + '"';
}

std::string description(const PropertyArray& array) {
    std::string result;
    for (const PropertyValue& value : array)
        result += (result.empty() ? "" : ", ") + description(value);
    return "[" + result + "]";
}

std::string description(const PropertyDictionary& dictionary) {
    std::string result;
    for (const auto& [key, value] : dictionary)
        result += (result.empty() ? "" : ", ") + quoted(key) + ": " + description(value);
    return "{" + result + "}";
}

} // namespace

std::int32_t intValue(const PropertyValue& value) {
    return std::visit(Overloaded{[](bool truth) { return std::int32_t{truth}; },
                                 [](std::int64_t integer) {
                                     return static_cast<std::int32_t>(std::clamp<std::int64_t>(
                                         integer, IntLimits::min(), IntLimits::max()));
                                 },
                                 [](double real) { return saturated(real); },
                                 [](const std::u16string& text) { return text::intValue(text); },
                                 [](const auto&) { return std::int32_t{0}; }},
                      value.variant());
}

bool boolValue(const PropertyValue& value) {
    return std::visit(Overloaded{[](bool truth) { return truth; },
                                 [](std::int64_t integer) { return integer != 0; },
                                 [](double real) { return real != 0; },
                                 [](const std::u16string& text) { return isTrueText(text); },
                                 [](const auto&) { return false; }},
                      value.variant());
}

std::u16string textValue(const PropertyValue& value) {
    return std::visit(
        Overloaded{[](bool truth) { return std::u16string(truth ? u"1" : u"0"); },
                   [](std::int64_t integer) { return text::fromUtf8(fmt::format("{}", integer)); },
                   [](double real) { return text::fromUtf8(fmt::format("{}", real)); },
                   [](const std::u16string& text) { return text; },
                   [](const auto&) { return std::u16string(); }},
        value.variant());
}

const PropertyValue* find(const PropertyDictionary& dictionary, std::string_view key) {
    const auto found = dictionary.find(key);
    return found == dictionary.end() ? nullptr : &found->second;
}

std::string description(const PropertyValue& value) {
    return std::visit(
        Overloaded{[](bool truth) { return std::string(truth ? "true" : "false"); },
                   [](std::int64_t integer) { return fmt::format("{}", integer); },
                   [](double real) { return fmt::format("{}", real); },
                   [](const std::u16string& text) { return quoted(text::toUtf8(text)); },
                   [](const PropertyDate& date) { return fmt::format("date {}", date.secondsSince2001); },
                   [](const PropertyData& data) { return fmt::format("{} bytes", data.bytes.size()); },
                   [](const auto& container) { return description(container); }},
        value.variant());
}

} // namespace tavrin
