#include "shell/commands/HandEdits.h"

#include "engine/pipeline/RenameEngine.h"
#include "shell/asking/FrontEnd.h"
#include "shell/commands/SourceCommands.h"
#include "shell/preview/PreviewControl.h"
#include "support/text/Text.h"

#include <memory>
#include <utility>

namespace tavrin {

namespace {

/// The bytes that a file with the name gets; nothing where none can bear it.
std::optional<std::string> bytesOf(const std::u16string& shown) {
    std::u16string name = shown;
    text::replaceUnit(name, u'/', u':');
    return text::toBytes(name);
}

} // namespace

// ---- names

bool HandEdits::pin(const PreviewList::Row& row, const std::u16string& name) {
    std::vector<NameByHand> one;
    one.push_back({row.fullPath, name == computedName(row) ? std::u16string() : name});
    return pin(std::move(one)) == 0;
}

std::size_t HandEdits::pin(std::vector<NameByHand> names) {
    std::vector<NamePins::Change> changes;
    changes.reserve(names.size());
    std::size_t refused = 0;
    const auto computed = services.engine.computedNames();
    for (NameByHand& one : names) {
        std::optional<std::string> bytes = bytesOf(one.name);
        refused += bytes ? 0 : 1;
        if (!bytes)
            continue;
        if (computed && pins.find(one.path) != nullptr) {
            const auto known = computed->find(one.path);
            if (known != computed->end() && known->second == one.name)
                bytes->clear();
        }
        changes.push_back({std::move(one.path), std::move(bytes)});
    }
    apply(std::move(changes));
    return refused;
}

void HandEdits::unpin(const std::vector<std::string>& paths) {
    std::vector<NamePins::Change> changes;
    for (const std::string& path : paths)
        changes.push_back({path, ""});
    apply(std::move(changes));
}

void HandEdits::unpinAll() {
    std::vector<NamePins::Change> changes;
    pins.forEach([&](const std::string& path, const NamePins::Pin&) { changes.push_back({path, ""}); });
    apply(std::move(changes));
}

void HandEdits::setNamesCount(bool count) {
    if (!isAllowed() || count == pins.namesCount())
        return;
    pins.setNamesCount(count);
    publishAndPreview();
}

std::u16string HandEdits::computedName(const PreviewList::Row& row) const {
    const auto computed = row.isPinned ? services.engine.computedNames() : nullptr;
    if (!computed)
        return row.finalName;
    const auto known = computed->find(row.fullPath);
    return known == computed->end() ? row.finalName : known->second;
}

std::u16string HandEdits::pinnedName(const std::string& path) const {
    const NamePins::Pin* const pin = pins.find(path);
    std::u16string name = pin == nullptr ? std::u16string() : text::fromBytes(pin->name);
    text::replaceUnit(name, u':', u'/');
    return name;
}

// ---- taking part

void HandEdits::setTakesPart(std::vector<RowId> rows, bool takesPart) {
    if (!isAllowed() || rows.empty())
        return;
    struct Gathering {
        std::vector<RowId> rows;
        std::vector<std::string> paths;
        std::size_t next = 0;
    };
    sources.begin([this, takesPart, all = std::make_shared<Gathering>(Gathering{std::move(rows), {}})] {
        if (all->next < all->rows.size()) {
            if (auto path = preview.nodeController().pathOf(all->rows[all->next++]))
                all->paths.push_back(std::move(*path));
            return true;
        }
        setTakesPart(all->paths, takesPart);
        return false;
    });
}

void HandEdits::setTakesPart(const std::vector<std::string>& paths, bool takesPart) {
    std::vector<NamePins::Change> changes;
    changes.reserve(paths.size());
    for (const std::string& path : paths)
        changes.push_back({path, std::nullopt, !takesPart});
    apply(std::move(changes));
}

void HandEdits::tickAll() {
    std::vector<NamePins::Change> changes;
    pins.forEach([&](const std::string& path, const NamePins::Pin&) {
        changes.push_back({path, std::nullopt, false});
    });
    apply(std::move(changes));
}

bool HandEdits::takesPart(const std::string& path) const {
    const NamePins::Pin* const pin = pins.find(path);
    return pin == nullptr || !pin->isLeftOut;
}

// ---- all of it

void HandEdits::restore(NamePins former) {
    if (!isAllowed())
        return;
    pins = std::move(former);
    publishAndPreview();
}

void HandEdits::change(std::vector<NamePins::Change> changes) {
    pins.apply(std::move(changes));
    publish();
}

void HandEdits::drop() {
    if (pins.isEmpty() && pins.namesCount())
        return;
    pins = {};
    publish();
}

void HandEdits::apply(std::vector<NamePins::Change> changes) {
    if (!isAllowed() || changes.empty())
        return;
    pins.apply(std::move(changes));
    publishAndPreview();
}

void HandEdits::publish() {
    services.engine.setPins(pins);
    services.frontEnd.handEditsChanged();
}

void HandEdits::publishAndPreview() {
    publish();
    preview.initiateDelayedPreviewUpdate();
}

} // namespace tavrin
