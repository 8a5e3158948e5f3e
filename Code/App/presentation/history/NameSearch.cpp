#include "presentation/history/NameSearch.h"

#include "presentation/preview/ShownName.h"
#include "support/text/Text.h"

namespace tavrin {

bool isNamed(const std::string& oldName, const std::string& newName, const QString& text) {
    const auto has = [&](const std::string& name) {
        return ShownName::of(text::fromBytes(name), false).contains(text, Qt::CaseInsensitive);
    };
    return has(oldName) || has(newName);
}

NamesFound NamesFound::find(const std::vector<ShownRun>& runs, const QString& text,
                            const std::function<bool()>& isUnwanted) {
    NamesFound found;
    for (const ShownRun& run : runs) {
        if (found.hasMore || isUnwanted())
            break;
        if (!run.isUsable())
            continue;
        const std::size_t before = found.hits.size();
        RunRecordReader record(run.run.path);
        record.examine();
        record.visitItems([&](const RecordedItem& item, std::size_t number) {
            if (!isNamed(item.oldName, item.newName, text))
                return !isUnwanted();
            found.hasMore = found.hits.size() == most;
            if (!found.hasMore)
                found.hits.push_back(
                    {found.runs.size(), static_cast<std::uint32_t>(number), item.oldName, item.newName});
            return !found.hasMore;
        });
        if (found.hits.size() > before)
            found.runs.push_back(run);
    }
    return found;
}

} // namespace tavrin
