#include "engine/naming/ConflictOrder.h"

#include "store/contexts/StoreContext.h"
#include "support/text/Text.h"

#include <algorithm>
#include <string>
#include <utility>

namespace tavrin {

namespace {

/// The values of a row in the order of the sort keys.
struct SortedRow {
    RowId id;
    std::vector<PropertyValue> values;
};

double numberOf(const PropertyValue& value) {
    if (const double* real = value.asReal())
        return *real;
    if (const std::int64_t* integer = value.asInteger())
        return static_cast<double>(*integer);
    const bool* boolean = value.asBoolean();
    return boolean && *boolean ? 1 : 0;
}

/// Negative, 0 or positive.
int compare(const PropertyValue& a, const PropertyValue& b) {
    if (a.asText() && b.asText())
        return text::compareByCodePoint(*a.asText(), *b.asText());
    const double first = numberOf(a);
    const double second = numberOf(b);
    return static_cast<int>(first > second) - static_cast<int>(first < second);
}

} // namespace

void sortRows(StoreContext& context, const std::vector<SortDescriptor>& order, std::vector<RowId>& rows) {
    std::vector<SortDescriptor> keys = order;
    keys.push_back({NodeKey::manualOrder, true});
    std::vector<SortedRow> sorted;
    sorted.reserve(rows.size());
    for (const RowId id : rows) {
        SortedRow& row = sorted.emplace_back(SortedRow{id, {}});
        row.values.reserve(keys.size());
        for (const SortDescriptor& key : keys)
            row.values.push_back(context.valueForKey(id, key.key).value_or(0));
    }
    std::stable_sort(sorted.begin(), sorted.end(), [&](const SortedRow& a, const SortedRow& b) {
        for (std::size_t i = 0; i < keys.size(); ++i) {
            if (const int difference = compare(a.values[i], b.values[i]))
                return keys[i].ascending ? difference < 0 : difference > 0;
        }
        return false;
    });
    std::transform(sorted.begin(), sorted.end(), rows.begin(), [](const SortedRow& row) { return row.id; });
}

} // namespace tavrin
