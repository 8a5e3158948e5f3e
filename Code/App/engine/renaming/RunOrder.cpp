#include "engine/renaming/RunOrder.h"

#include "store/contexts/StoreContext.h"

#include <algorithm>
#include <utility>

namespace tavrin {

namespace {

constexpr std::size_t itemsPerBatch = 1000;

} // namespace

RunOrder::RunOrder(StoreContext& rows, const Predicate& planned, PassMarker marker, Form wantedForm)
    : context(rows), request{FetchEntity::file,
                             planned.with(Predicate::notMarked(marker)),
                             {{NodeKey::mustBeSwapped, false},
                              {NodeKey::canBeRenamedIndependently, false},
                              {NodeKey::name, true}}},
      form(wantedForm) {
    if (form == Form::byFolder) {
        folders = foldersInOrder();
        return;
    }
    request.order.insert(request.order.begin(), {NodeKey::depth, false});
    request.limit = itemsPerBatch;
}

std::vector<RowId> RunOrder::next() {
    if (form == Form::byName)
        return context.fetch(request);
    std::vector<RowId> batch;
    for (;;) {
        const std::size_t count = std::min(itemsPerBatch - batch.size(), items.size() - taken);
        const auto first = items.begin() + static_cast<std::ptrdiff_t>(taken);
        batch.insert(batch.end(), first, first + static_cast<std::ptrdiff_t>(count));
        taken += count;
        if (batch.size() == itemsPerBatch || folders.empty())
            return batch;
        FetchRequest ofFolder = request;
        ofFolder.predicate = request.predicate.with(Predicate::hasParent(folders.back()));
        items = context.fetch(ofFolder);
        folders.pop_back();
        taken = 0;
    }
}

/// Backwards.
std::vector<RowId> RunOrder::foldersInOrder() const {
    std::vector<std::pair<std::int32_t, RowId>> byDepth;
    for (const RowId folder :
         context.fetch({FetchEntity::node, Predicate::isTrue(NodeKey::treatAsFolder), {}, 0}))
        byDepth.emplace_back(-context.row(folder).depth, folder);
    std::ranges::sort(byDepth, std::greater());
    std::vector<RowId> order;
    for (const auto& [depth, folder] : byDepth)
        order.push_back(folder);
    return order;
}

} // namespace tavrin
