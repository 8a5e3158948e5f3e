#include "store/SegmentTable.h"

#include "store/StoreError.h"

#include <algorithm>
#include <utility>

namespace tavrin {

namespace {

/// A transaction keeps the pages it replaces in memory, so it stays small.
constexpr std::size_t segmentsPerTransaction = 8;

} // namespace

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
        // A full disk must not stop reading: what can't be written now stays in memory.
        if (holds == 0)
            static_cast<void>(makeRoom());
        auto segment = freshSegment();
        file->readSegment(number, *segment);
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
    entry.resident->dirty.fill(true);
    entry.resident->lastUse = ++clock;
    entry.exists = true;
    ++existing;
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
    --existing;
    if (file != nullptr)
        file->forgetSegment(number);
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

std::optional<std::string> SegmentTable::makeRoom() {
    if (file == nullptr)
        return std::nullopt;
    constexpr std::size_t least = 8u << 20; // below it every access would page
    const std::size_t allowed = std::max(budget - std::min(budget, reserve), std::min(least, budget));
    std::size_t bytes = residentBytes();
    if (bytes <= allowed)
        return std::nullopt;
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
    if (auto failure = writeDirty(victims))
        return failure;
    for (const std::uint32_t number : victims)
        keepSpare(std::move(entries[number].resident));
    return std::nullopt;
}

std::optional<std::string> SegmentTable::flush() {
    if (file == nullptr)
        return std::nullopt;
    std::vector<std::uint32_t> numbers;
    for (std::uint32_t number = 0; number < entries.size(); ++number) {
        if (entries[number].resident && entries[number].resident->isDirty())
            numbers.push_back(number);
    }
    return writeDirty(numbers);
}

std::optional<std::string> SegmentTable::writeDirty(const std::vector<std::uint32_t>& numbers) {
    std::vector<StoreFile::NumberedSegment> batch;
    const auto writeBatch = [&]() -> std::optional<std::string> {
        auto failure = batch.empty() ? std::nullopt : file->writeSegments(batch);
        batch.clear();
        return failure;
    };
    for (const std::uint32_t number : numbers) {
        Segment& segment = *entries[number].resident;
        if (segment.isDirty())
            batch.push_back({number, &segment});
        if (batch.size() == segmentsPerTransaction) {
            if (auto failure = writeBatch())
                return failure;
        }
    }
    return writeBatch();
}

void SegmentTable::leaveFile() { file = nullptr; }

bool SegmentTable::exceedsBudget() const {
    return file != nullptr && existing * (Segment::capacity * (sizeof(NodeRow) + 64)) > budget;
}

} // namespace tavrin
