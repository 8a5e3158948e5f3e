#include "store/paging/RowImages.h"

#include "store/paging/SegmentTable.h"

#include <algorithm>
#include <utility>

namespace tavrin {

namespace {

constexpr std::size_t tableSize = RowImages::capacity * 2;

std::size_t placeOf(RowId id) { return (id * 2654435761u) >> 15; } // Fibonacci hashing to 17 bits

static_assert(tableSize == std::size_t{1} << 17);

} // namespace

RowImages::Image* RowImages::find(RowId id) {
    if (images.empty())
        return nullptr;
    for (const std::size_t likely : {last, last + 1}) {
        if (likely < images.size() && images[likely].id == id)
            return &images[last = likely];
    }
    for (std::size_t place = placeOf(id); table[place] != 0; place = (place + 1) % tableSize) {
        const std::size_t index = table[place] - 1;
        if (images[index].id == id)
            return &images[last = index];
    }
    return nullptr;
}

void RowImages::gather(const std::vector<RowId>& ids, SegmentTable& segments) {
    clear();
    std::vector<std::pair<RowId, std::uint32_t>> inSegments; // ids and their places in the walk
    inSegments.reserve(ids.size());
    for (const RowId id : ids)
        inSegments.emplace_back(id, static_cast<std::uint32_t>(inSegments.size()));
    std::sort(inSegments.begin(), inSegments.end());
    table.assign(tableSize, 0);
    images.resize(ids.size());
    for (std::size_t i = 0; i < inSegments.size();) {
        const std::uint32_t number = Segment::number(inSegments[i].first);
        const Segment& segment = segments.use(number);
        for (; i < inSegments.size() && Segment::number(inSegments[i].first) == number; ++i) {
            const auto [id, place] = inSegments[i];
            take(images[place], segment, Segment::index(id));
            images[place].id = id;
            insertIntoTable(place + 1);
        }
    }
}

void RowImages::take(Image& image, const Segment& segment, std::size_t index) {
    const std::string_view name = segment.names.get(index).bytes;
    const TextRegion::Text final = segment.finals.get(index);
    image.row = segment.rows[index];
    image.component = static_cast<std::uint32_t>(texts.size());
    image.componentLength = static_cast<std::uint32_t>(name.size());
    texts += name;
    image.final = static_cast<std::uint32_t>(texts.size());
    image.finalLength = static_cast<std::uint32_t>(final.bytes.size());
    texts += final.bytes;
    const std::string_view regex = segment.regexAt(index);
    image.regex = static_cast<std::uint32_t>(texts.size());
    image.regexLength = static_cast<std::uint32_t>(regex.size());
    texts += regex;
    image.hasFinal = segment.finals.has(index);
    image.finalIsWide = final.isWide;
}

void RowImages::insertIntoTable(std::uint32_t index) {
    std::size_t place = placeOf(images[index - 1].id);
    while (table[place] != 0)
        place = (place + 1) % tableSize;
    table[place] = index;
}

void RowImages::clear() {
    images.clear();
    texts.clear();
    last = 0;
}

} // namespace tavrin
