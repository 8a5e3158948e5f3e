#include "store/paging/SegmentTable.h"

#include "store/paging/StoreError.h"
#include "store/paging/StoreFile.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstring>
#include <malloc.h>
#include <span>
#include <type_traits>
#include <utility>

namespace tavrin {

namespace {

/// A transaction keeps the pages it replaces in memory, so it stays small.
constexpr std::size_t segmentsPerTransaction = 8;

constexpr std::array everyPart{Segment::rowPart, Segment::namePart, Segment::finalPart, Segment::regexPart};
static_assert(everyPart.size() == Segment::partCount);

std::int64_t blobNumber(std::uint32_t number, Segment::Part part) {
    return std::int64_t{number} * std::int64_t{Segment::partCount} + part;
}

static_assert(std::is_trivially_copyable_v<NodeRow>, "rows are paged as plain bytes");

} // namespace

std::string_view Segment::blob(Part part, std::string& scratch) const {
    if (part == rowPart)
        return {reinterpret_cast<const char*>(rows.data()), rows.size() * sizeof(NodeRow)};
    scratch.clear();
    (part == namePart ? names : part == finalPart ? finals : regex).appendBlob(scratch);
    return scratch;
}

void Segment::clear() {
    rows.assign(capacity, NodeRow{});
    names.clearAll();
    finals.clearAll();
    regex = TextRegion();
    dirty = {};
}

bool Segment::readBlob(Part part, std::string_view bytes) {
    if (part != rowPart)
        return (part == namePart ? names : part == finalPart ? finals : regex).readBlob(bytes, capacity);
    if (bytes.size() != capacity * sizeof(NodeRow))
        return false;
    std::memcpy(static_cast<void*>(rows.data()), bytes.data(), bytes.size());
    return true;
}

std::size_t Segment::footprint() const {
    return rows.capacity() * sizeof(NodeRow) + names.footprint() + finals.footprint() + regex.footprint();
}

void Segment::setRegex(std::size_t index, std::string_view columns) {
    if (!hasRegex())
        regex = TextRegion(capacity);
    regex.set(index, {columns, false});
    dirty[regexPart] = true;
}

bool SegmentTable::exists(std::uint32_t number) const {
    return number < entries.size() && entries[number].exists;
}

Segment& SegmentTable::use(std::uint32_t number) {
    if (!exists(number))
        throw StoreError("a segment of the item store is missing");
    Entry& entry = entries[number];
    if (!entry.resident) {
        if (file == nullptr)
            throw StoreError("a segment of the item store is gone with its file");
        if (holds == 0)
            makeRoom();
        auto segment = freshSegment();
        read(number, entry.hasRegex, *segment);
        entry.resident = std::move(segment);
    }
    entry.resident->lastUse = ++clock;
    return *entry.resident;
}

void SegmentTable::create(std::uint32_t number) {
    if (exists(number))
        return;
    if (number >= entries.size())
        entries.resize(number + 1);
    Entry& entry = entries[number];
    entry.resident = freshSegment();
    for (const Segment::Part part : {Segment::rowPart, Segment::namePart, Segment::finalPart})
        entry.resident->dirty[part] = true;
    entry.resident->lastUse = ++clock;
    entry.exists = true;
}

bool SegmentTable::hasRegex(std::uint32_t number) const {
    if (!exists(number))
        return false;
    const Entry& entry = entries[number];
    return entry.resident ? entry.resident->hasRegex() : entry.hasRegex;
}

std::unique_ptr<Segment> SegmentTable::freshSegment() {
    if (spares.empty())
        return std::make_unique<Segment>();
    std::unique_ptr<Segment> segment = std::move(spares.back());
    spares.pop_back();
    segment->clear();
    return segment;
}

void SegmentTable::keepSpare(std::unique_ptr<Segment> segment) {
    constexpr std::size_t most = 16;
    if (spares.size() < most)
        spares.push_back(std::move(segment));
}

void SegmentTable::drop(std::uint32_t number) {
    if (!exists(number))
        return;
    entries[number] = Entry{};
    if (file != nullptr)
        file->forget(blobNumber(number, everyPart.front()), blobNumber(number, everyPart.back()));
}

std::size_t SegmentTable::residentBytes() const {
    std::size_t bytes = 0;
    for (const Entry& entry : entries)
        bytes += entry.resident ? entry.resident->footprint() : 0;
    for (const auto& spare : spares)
        bytes += spare->footprint();
    return bytes;
}

std::vector<std::uint32_t> SegmentTable::residentByAge() const {
    std::vector<std::uint32_t> numbers;
    for (std::uint32_t number = 0; number < entries.size(); ++number) {
        if (entries[number].resident)
            numbers.push_back(number);
    }
    std::sort(numbers.begin(), numbers.end(), [this](std::uint32_t a, std::uint32_t b) {
        return entries[a].resident->lastUse < entries[b].resident->lastUse;
    });
    return numbers;
}

void SegmentTable::makeRoom() {
    if (file == nullptr || !file->takesMore())
        return;
    constexpr std::size_t least = 8u << 20; // below it every access would page
    // What the store always has in memory of each row: its summary and two markers.
    const std::size_t tables = entries.size() * Segment::capacity * 3;
    const std::size_t allowed =
        std::max(budget - std::min(budget, reserve + tables), std::min(least, budget));
    std::size_t bytes = residentBytes();
    if (bytes <= allowed)
        return;
    if (reserve > 0)
        spares.clear();
    std::vector<std::uint32_t> victims;
    for (const std::uint32_t number : residentByAge()) {
        // Some slack keeps the next segment from evicting again.
        if (bytes <= allowed - allowed / 8 || victims.size() + 1 >= entries.size())
            break;
        bytes -= std::min(bytes, entries[number].resident->footprint());
        victims.push_back(number);
    }
    if (!write(victims))
        return;
    for (const std::uint32_t number : victims) {
        entries[number].hasRegex = entries[number].resident->hasRegex();
        keepSpare(std::move(entries[number].resident));
    }
}

void SegmentTable::setReserve(std::size_t bytes) {
    reserve = bytes;
    if (bytes == 0)
        return;
    makeRoom();
    if (file != nullptr)
        malloc_trim(0); // segments leave holes that only this gives back
}

bool SegmentTable::write(const std::vector<std::uint32_t>& numbers) {
    std::string scratch;
    for (std::size_t done = 0; done < numbers.size(); done += segmentsPerTransaction) {
        const std::span batch =
            std::span(numbers).subspan(done, std::min(segmentsPerTransaction, numbers.size() - done));
        const bool isWritten = file->write([&](const StoreFile::Put& put) {
            for (const std::uint32_t number : batch) {
                const Segment& segment = *entries[number].resident;
                for (const Segment::Part part : everyPart) {
                    if (segment.dirty[part])
                        put(blobNumber(number, part), segment.blob(part, scratch));
                }
            }
        });
        if (!isWritten)
            return false;
        for (const std::uint32_t number : batch)
            entries[number].resident->dirty = {};
    }
    return true;
}

void SegmentTable::read(std::uint32_t number, bool hasRegex, Segment& into) {
    try {
        for (const Segment::Part part : everyPart) {
            if (part == Segment::regexPart && !hasRegex)
                continue;
            if (!file->read(blobNumber(number, part),
                            [&](std::string_view bytes) { return into.readBlob(part, bytes); }))
                throw StoreError("missing");
        }
    } catch (const StoreError& error) {
        throw StoreError(
            fmt::format("segment {} of the item store could not be read: {}", number, error.what()));
    }
}

} // namespace tavrin
