#include "engine/history/ItemsNow.h"

#include "support/text/PathParts.h"

namespace tavrin {

ItemsNow::ItemsNow(RunRecordReader& record, const PastRun& run)
    : places(record), renamedAgain(std::string(PathParts(run.path).folder), run.name) {}

void ItemsNow::visit(const std::function<void(const PlacedItem&, const WhereNow&)>& visitor) {
    places.visit(JournalPlaces::Which::all,
                 [&](const PlacedItem& placed) { visitor(placed, whereNow(placed)); });
}

WhereNow ItemsNow::whereNow(const PlacedItem& placed) {
    if (placed.place == ItemPlace::gone || placed.place == ItemPlace::replaced) {
        const RenamedAgain::Hit* hit =
            renamedAgain.find(joinedPath(placed.folder, placed.item.newName), placed.item.inode);
        if (hit != nullptr)
            return {ItemNow::renamed, hit->newName, hit->run};
    }
    const bool isNowhere = placed.place == ItemPlace::gone || placed.place == ItemPlace::unclear;
    return {static_cast<ItemNow>(placed.place), isNowhere ? std::string() : placed.name, {}};
}

} // namespace tavrin
