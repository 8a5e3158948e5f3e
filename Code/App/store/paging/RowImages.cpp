#include "store/paging/RowImages.h"

#include "store/paging/SegmentTable.h"

#include <algorithm>

namespace tavrin {

namespace {

constexpr std::size_t tableSize = RowImages::capacity * 2;

std::size_t placeOf(RowId id) { return (id * 2654435761u) >> 15; } // Fibonacci hashing to 17 bits

static_assert(tableSize == std::size_t{1} << 17);

} // namespace

RowImages::Image* RowImages::find(RowId id) {
    if (images.empty())
        return nullptr;
    for (std::size_t place = placeOf(id); table[place] != 0; place = (place + 1) % tableSize) {
        Image& image = images[table[place] - 1];
        if (image.id == id)
            return &image;
    }
    return nullptr;
}

void RowImages::gather(std::vector<RowId> ids, SegmentTable& segments) {
    clear();
    std::sort(ids.begin(), ids.end());
    table.assign(tableSize, 0);
    images.reserve(ids.size());
    for (std::size_t i = 0; i < ids.size();) {
        const std::uint32_t number = Segment::number(ids[i]);
        const Segment& segment = segments.use(number);
        for (; i < ids.size() && Segment::number(ids[i]) == number; ++i) {
            const std::size_t index = Segment::index(ids[i]);
            const std::string_view name = segment.names.get(index).bytes;
            const TextRegion::Text final = segment.finals.get(index);
            Image image;
            image.row = segment.rows[index];
            image.id = ids[i];
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
            images.push_back(image);
            insertIntoTable(static_cast<std::uint32_t>(images.size()));
        }
    }
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
}

} // namespace tavrin
