#include "store/rows/TagTable.h"

#include "store/paging/StoreFile.h"

#include <string_view>
#include <utility>

namespace tavrin {

namespace {

/// Beyond the numbers of all segments' parts.
std::int64_t blobNumber(RowId row) { return (std::int64_t{1} << 40) + row; }

/// Of a place in the map, beside the bytes it holds.
constexpr std::size_t overhead = 64;

} // namespace

void TagTable::set(RowId row, PropertyData data) {
    forget(row);
    bytes += data.bytes.size() + overhead;
    resident.emplace(row, std::move(data));
    if (bytes > budget && file != nullptr && file->takesMore())
        pageOut();
}

std::optional<PropertyData> TagTable::get(RowId row) {
    if (const auto found = resident.find(row); found != resident.end())
        return found->second;
    std::optional<PropertyData> data;
    if (file != nullptr)
        file->read(blobNumber(row), [&](std::string_view blob) {
            data.emplace().bytes.assign(blob.begin(), blob.end());
            return true;
        });
    return data;
}

void TagTable::forget(RowId row) {
    if (const auto found = resident.find(row); found != resident.end()) {
        bytes -= found->second.bytes.size() + overhead;
        resident.erase(found);
    }
}

void TagTable::pageOut() {
    const bool isWritten = file->write([this](const StoreFile::Put& put) {
        for (const auto& [row, data] : resident)
            put(blobNumber(row), {reinterpret_cast<const char*>(data.bytes.data()), data.bytes.size()});
    });
    if (!isWritten)
        return;
    resident.clear();
    bytes = 0;
}

} // namespace tavrin
