#include "store/queries/SortKeys.h"

#include <algorithm>
#include <bit>
#include <concepts>
#include <cstring>
#include <type_traits>
#include <utility>
#include <variant>

namespace tavrin {

namespace {

constexpr std::size_t wordSize = 4;
constexpr std::size_t lengthSize = sizeof(std::uint32_t);

bool isText(const SortDescriptor& descriptor) {
    return descriptor.key == NodeKey::name || descriptor.key == NodeKey::smartName;
}

constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// Unsigned numbers in the order of the doubles.
std::uint64_t ordered(double value) {
    const auto bits = std::bit_cast<std::uint64_t>(value == 0 ? 0.0 : value);
    constexpr std::uint64_t sign = std::uint64_t{1} << 63;
    return (bits & sign) != 0 ? ~bits : bits | sign;
}

std::uint64_t ordered(std::int32_t value) { return static_cast<std::uint32_t>(value) ^ 0x80000000u; }

template <std::unsigned_integral Number> std::uint64_t ordered(Number value) { return value; }

template <typename Enum>
requires std::is_enum_v<Enum> std::uint64_t ordered(Enum value) { return static_cast<std::uint8_t>(value); }

/// SplitMix64, a bijection that scatters consecutive numbers.
std::uint64_t scatter(std::uint64_t value) {
    value += 0x9E3779B97F4A7C15u;
    value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9u;
    value = (value ^ (value >> 27)) * 0x94D049BB133111EBu;
    return value ^ (value >> 31);
}

/// Of the key's bytes. What has no member counts as a wide number; the bytes of names come on top.
constexpr std::size_t widthOf(std::monostate /*derived*/) { return sizeof(std::uint64_t); }
template <typename Value> constexpr std::size_t widthOf(Value NodeRow::* /*member*/) { return sizeof(Value); }

std::uint64_t bigEndian(const char* bytes, std::size_t length) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < 8; ++i)
        value = (value << 8) | (i < length ? static_cast<unsigned char>(bytes[i]) : 0u);
    return value;
}

} // namespace

bool SortKeys::addInOrder(RowId id, const NodeRow& row, std::string_view component) {
    arena.clear();
    appendKey(id, row, component);
    if (!std::exchange(isFirst, false) && arena < previous)
        return false;
    previous.swap(arena);
    return true;
}

std::size_t SortKeys::keepAll(std::size_t rows, std::size_t bytesOfNames) {
    const auto texts = static_cast<std::size_t>(std::count_if(order.begin(), order.end(), isText));
    const std::size_t bytes = bytesOfNames * texts + rows * (bytesBesideTexts() + wordSize / 2);
    arena.clear();
    arena.reserve(bytes);
    entries.reserve(rows);
    return bytes + rows * sizeof(Entry);
}

std::size_t SortKeys::bytesBesideTexts() const {
    std::size_t bytes = lengthSize + sizeof(NodeRow::manualOrder);
    for (const SortDescriptor& descriptor : order) {
        // Numbers inside names take a few bytes more than their digits.
        bytes += std::visit([](auto member) { return widthOf(member); }, attribute(descriptor.key).member);
    }
    return bytes;
}

void SortKeys::add(RowId id, const NodeRow& row, std::string_view component) {
    arena.resize((arena.size() + wordSize - 1) / wordSize * wordSize);
    const std::size_t start = arena.size();
    arena.append(lengthSize, '\0');
    appendKey(id, row, component);
    const auto length = static_cast<std::uint32_t>(arena.size() - start - lengthSize);
    std::memcpy(arena.data() + start, &length, lengthSize);
    entries.push_back({0, static_cast<std::uint32_t>(start / wordSize), id});
}

std::string_view SortKeys::keyAt(const Entry& entry) const {
    const char* start = arena.data() + std::size_t{entry.place} * wordSize;
    std::uint32_t length = 0;
    std::memcpy(&length, start, lengthSize);
    return {start + lengthSize, length};
}

void SortKeys::appendKey(RowId id, const NodeRow& row, std::string_view component) {
    for (const SortDescriptor& descriptor : order) {
        const std::size_t begin = arena.size();
        append(descriptor.key, id, row, component);
        if (!descriptor.ascending) {
            for (std::size_t i = begin; i < arena.size(); ++i)
                arena[i] = static_cast<char>(~arena[i]);
        }
    }
    appendNumber(ordered(row.manualOrder), sizeof row.manualOrder);
}

void SortKeys::append(NodeKey key, RowId id, const NodeRow& row, std::string_view component) {
    switch (key) {
    case NodeKey::name:
        return appendText(component);
    case NodeKey::smartName:
        return appendNaturalText(component);
    case NodeKey::random:
        return appendNumber(scatter(secret ^ scatter(id)), sizeof secret);
    default:
        return std::visit(
            [&](auto member) {
                if constexpr (!std::is_same_v<decltype(member), std::monostate>)
                    appendNumber(ordered(row.*member), widthOf(member));
            },
            attribute(key).member);
    }
}

void SortKeys::appendNumber(std::uint64_t value, std::size_t bytes) {
    for (std::size_t i = bytes; i-- > 0;)
        arena.push_back(static_cast<char>(value >> (8 * i)));
}

void SortKeys::appendText(std::string_view text) {
    const std::size_t begin = arena.size();
    arena.append(text);
    std::replace(arena.begin() + static_cast<std::ptrdiff_t>(begin), arena.end(), ':', '/');
    arena.push_back('\0'); // names hold no NUL, so a name sorts before its continuations
}

void SortKeys::appendNaturalText(std::string_view text) {
    // A run of digits stands for 32 digits of which the first is always "0": that digit and the value order
    // just as the expanded text does, against other runs and against other characters.
    for (std::size_t i = 0; i < text.size();) {
        if (!isDigit(text[i])) {
            arena.push_back(text[i++]);
            continue;
        }
        std::uint64_t value = 0;
        for (; i < text.size() && isDigit(text[i]); ++i)
            value = std::min<std::uint64_t>(value * 10 + static_cast<unsigned>(text[i] - '0'), 0x7FFFFFFF);
        arena.push_back('0');
        appendNumber(value, 4);
    }
    arena.push_back('\0');
}

std::size_t SortKeys::commonPrefix() const {
    const std::string_view first = keyAt(entries.front());
    std::size_t common = first.size();
    for (const Entry& entry : entries) {
        const std::string_view key = keyAt(entry);
        const auto limit = static_cast<std::ptrdiff_t>(std::min(common, key.size()));
        common = static_cast<std::size_t>(
            std::mismatch(first.begin(), first.begin() + limit, key.begin()).first - first.begin());
    }
    return common;
}

void SortKeys::takeSorted(std::vector<RowId>& rows) {
    const std::size_t skip = commonPrefix();
    for (Entry& entry : entries) {
        const std::string_view key = keyAt(entry);
        entry.prefix = bigEndian(key.data() + skip, key.size() - skip);
    }
    std::sort(entries.begin(), entries.end(), [this](const Entry& a, const Entry& b) {
        if (a.prefix != b.prefix)
            return a.prefix < b.prefix;
        const int difference = keyAt(a).compare(keyAt(b));
        return difference != 0 ? difference < 0 : a.id < b.id;
    });
    arena = {};
    std::transform(entries.begin(), entries.end(), rows.begin(), [](const Entry& entry) { return entry.id; });
    entries = {};
}

} // namespace tavrin
