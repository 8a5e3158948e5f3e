#include "store/SortKeys.h"

#include <fmt/core.h>

#include <algorithm>
#include <bit>
#include <cstring>

namespace tavrin {

namespace {

constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// Unsigned numbers in the order of the doubles.
std::uint64_t ordered(double value) {
    const auto bits = std::bit_cast<std::uint64_t>(value == 0 ? 0.0 : value);
    constexpr std::uint64_t sign = std::uint64_t{1} << 63;
    return (bits & sign) != 0 ? ~bits : bits | sign;
}

std::uint32_t ordered(std::int32_t value) { return static_cast<std::uint32_t>(value) ^ 0x80000000u; }

/// SplitMix64, a bijection that scatters consecutive numbers.
std::uint64_t scatter(std::uint64_t value) {
    value += 0x9E3779B97F4A7C15u;
    value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9u;
    value = (value ^ (value >> 27)) * 0x94D049BB133111EBu;
    return value ^ (value >> 31);
}

/// The bits before the variant, less the four that the version takes.
std::uint64_t randomHigh(std::uint64_t secret, RowId id) {
    return scatter(secret ^ scatter(id)) & ~std::uint64_t{0xF000};
}

std::uint64_t bigEndian(const char* bytes, std::size_t length) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < 8; ++i)
        value = (value << 8) | (i < length ? static_cast<unsigned char>(bytes[i]) : 0u);
    return value;
}

} // namespace

std::string randomUuid(std::uint64_t secret, RowId id) {
    const std::uint64_t high = randomHigh(secret, id);
    const std::uint64_t low = scatter(high ^ secret);
    return fmt::format("{:08X}-{:04X}-4{:03X}-{:04X}-{:012X}", high >> 32, (high >> 16) & 0xFFFF,
                       high & 0xFFF, ((low >> 48) & 0x3FFF) | 0x8000, low & 0xFFFFFFFFFFFFu);
}

bool SortKeys::addInOrder(RowId id, const NodeRow& row, std::string_view component) {
    arena.clear();
    appendKey(id, row, component);
    if (!inOrder.empty() && arena < previous)
        return false;
    previous.swap(arena);
    inOrder.push_back(id);
    return true;
}

void SortKeys::keepAll(std::size_t rows, std::size_t bytesOfKeys) {
    inOrder = {};
    arena.clear();
    arena.reserve(bytesOfKeys);
    entries.reserve(rows);
}

void SortKeys::add(RowId id, const NodeRow& row, std::string_view component) {
    const std::size_t start = arena.size();
    appendKey(id, row, component);
    entries.push_back({0, start, arena.size() - start, id});
}

void SortKeys::appendKey(RowId id, const NodeRow& row, std::string_view component) {
    for (const SortDescriptor& descriptor : order) {
        const std::size_t begin = arena.size();
        append(descriptor, id, row, component);
        if (!descriptor.ascending) {
            for (std::size_t i = begin; i < arena.size(); ++i)
                arena[i] = static_cast<char>(~arena[i]);
        }
    }
    appendNumber(ordered(row.manualOrder), 4);
}

void SortKeys::append(const SortDescriptor& descriptor, RowId id, const NodeRow& row,
                      std::string_view component) {
    switch (descriptor.key) {
    case NodeKey::name:
        return appendText(component);
    case NodeKey::smartName:
        return appendNaturalText(component);
    case NodeKey::modDate:
        return appendNumber(ordered(row.modDate), 8);
    case NodeKey::crDate:
        return appendNumber(ordered(row.crDate), 8);
    case NodeKey::exif:
        return appendNumber(ordered(row.exif), 8);
    case NodeKey::size:
        return appendNumber(row.size, 8);
    case NodeKey::random:
        return appendNumber(randomHigh(secret, id), 8);
    case NodeKey::manualOrder:
        return appendNumber(ordered(row.manualOrder), 4);
    case NodeKey::depth:
        return appendNumber(ordered(row.depth), 4);
    case NodeKey::treatAsFolder:
        return appendNumber(row.treatAsFolder, 1);
    case NodeKey::root:
        return appendNumber(row.root, 1);
    case NodeKey::diff:
        return appendNumber(row.diff, 1);
    case NodeKey::mustBeSwapped:
        return appendNumber(row.mustBeSwapped, 1);
    case NodeKey::canBeRenamedIndependently:
        return appendNumber(row.canBeRenamedIndependently, 1);
    case NodeKey::sortingInformationLoaded:
        return appendNumber(row.sortingInformationLoaded, 1);
    case NodeKey::fullPath:
    case NodeKey::stageFlag:
    case NodeKey::secondaryStageFlag:
    case NodeKey::parent:
    case NodeKey::children:
    case NodeKey::finalName:
    case NodeKey::parentPath:
    case NodeKey::tagData:
    case NodeKey::regex1:
    case NodeKey::regex2:
    case NodeKey::regex3:
    case NodeKey::regex4:
    case NodeKey::regex5:
    case NodeKey::regex6:
    case NodeKey::cannotBeRenamedBefore:
    case NodeKey::mustBeRenamedBefore:
        return; // no order is made of these
    }
}

void SortKeys::appendNumber(std::uint64_t value, unsigned bytes) {
    for (unsigned i = bytes; i-- > 0;)
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
    const Entry& first = entries.front();
    std::size_t common = first.length;
    for (const Entry& entry : entries) {
        const char* a = arena.data() + first.offset;
        const char* b = arena.data() + entry.offset;
        const std::size_t limit = std::min<std::size_t>(common, entry.length);
        common = static_cast<std::size_t>(std::mismatch(a, a + limit, b).first - a);
    }
    return common;
}

std::vector<RowId> SortKeys::sorted() {
    if (entries.empty())
        return std::move(inOrder);
    {
        const std::size_t skip = commonPrefix();
        for (Entry& entry : entries)
            entry.prefix = bigEndian(arena.data() + entry.offset + skip, entry.length - skip);
    }
    const char* keys = arena.data();
    const auto isLess = [keys](const Entry& a, const Entry& b) {
        if (a.prefix != b.prefix)
            return a.prefix < b.prefix;
        const std::size_t common = std::min<std::size_t>(a.length, b.length);
        const int difference = std::memcmp(keys + a.offset, keys + b.offset, common);
        if (difference != 0)
            return difference < 0;
        return a.length != b.length ? a.length < b.length : a.id < b.id;
    };
    std::sort(entries.begin(), entries.end(), isLess);
    std::vector<RowId> ids;
    ids.reserve(entries.size());
    for (const Entry& entry : entries)
        ids.push_back(entry.id);
    arena = {};
    entries = {};
    return ids;
}

} // namespace tavrin
