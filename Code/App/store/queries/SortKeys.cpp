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
    return descriptor.key == NodeKey::name || descriptor.key == NodeKey::smartName ||
           descriptor.key == NodeKey::finalName;
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

/// No problem comes behind all problems.
std::uint64_t ordered(NameProblem value) {
    return static_cast<std::uint8_t>(static_cast<std::uint8_t>(value) - 1);
}

std::uint64_t ordered(NamedBy value) { return static_cast<std::uint8_t>(value); }

std::uint64_t ordered(RowValues value) { return static_cast<std::uint8_t>(value); }

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

/// A name that equals the present one is held as the component, with ":" for "/".
std::string shown(std::string_view finalName) {
    std::string text(finalName);
    std::ranges::replace(text, ':', '/');
    return text;
}

std::uint64_t bigEndian(const char* bytes, std::size_t length) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < 8; ++i)
        value = (value << 8) | (i < length ? static_cast<unsigned char>(bytes[i]) : 0u);
    return value;
}

} // namespace

bool SortKeys::needs(NodeKey key) const {
    return std::ranges::find(order, key, &SortDescriptor::key) != order.end();
}

bool SortKeys::addInOrder(const SortedRow& row) {
    arena.clear();
    appendKey(row);
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

void SortKeys::add(const SortedRow& row) {
    arena.resize((arena.size() + wordSize - 1) / wordSize * wordSize);
    const std::size_t start = arena.size();
    arena.append(lengthSize, '\0');
    appendKey(row);
    const auto length = static_cast<std::uint32_t>(arena.size() - start - lengthSize);
    std::memcpy(arena.data() + start, &length, lengthSize);
    entries.push_back({0, static_cast<std::uint32_t>(start / wordSize), row.id});
}

std::string_view SortKeys::keyAt(const Entry& entry) const {
    const char* start = arena.data() + std::size_t{entry.place} * wordSize;
    std::uint32_t length = 0;
    std::memcpy(&length, start, lengthSize);
    return {start + lengthSize, length};
}

void SortKeys::appendKey(const SortedRow& row) {
    for (const SortDescriptor& descriptor : order) {
        const std::size_t begin = arena.size();
        append(descriptor.key, row);
        if (!descriptor.ascending) {
            for (std::size_t i = begin; i < arena.size(); ++i)
                arena[i] = static_cast<char>(~arena[i]);
        }
    }
    appendNumber(ordered(row.row.manualOrder), sizeof row.row.manualOrder);
}

void SortKeys::append(NodeKey key, const SortedRow& row) {
    switch (key) {
    case NodeKey::name:
        return appendText(row.component);
    case NodeKey::smartName:
        return appendNaturalText(arena, row.component);
    case NodeKey::finalName:
        return appendNaturalText(arena, shown(row.finalName));
    case NodeKey::folder:
        return appendNumber(row.folderRank, sizeof row.folderRank);
    case NodeKey::parent:
        return appendNumber(row.row.parent, sizeof row.row.parent);
    case NodeKey::random:
        return appendNumber(scatter(secret ^ scatter(row.id)), sizeof secret);
    default:
        return std::visit(
            [&](auto member) {
                if constexpr (!std::is_same_v<decltype(member), std::monostate>)
                    appendNumber(ordered(row.row.*member), widthOf(member));
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

void SortKeys::appendNaturalText(std::string& key, std::string_view text) {
    // A run of digits stands for 32 digits of which the first is always "0": that digit and the value order
    // just as the expanded text does, against other runs and against other characters.
    for (std::size_t i = 0; i < text.size();) {
        if (!isDigit(text[i])) {
            key.push_back(text[i++]);
            continue;
        }
        std::uint64_t value = 0;
        for (; i < text.size() && isDigit(text[i]); ++i)
            value = std::min<std::uint64_t>(value * 10 + static_cast<unsigned>(text[i] - '0'), 0x7FFFFFFF);
        key.push_back('0');
        for (int shift = 24; shift >= 0; shift -= 8)
            key.push_back(static_cast<char>(value >> shift));
    }
    key.push_back('\0');
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
