#include "shell/commands/HandEdits.h"

#include "engine/pipeline/RenameEngine.h"
#include "shell/asking/FrontEnd.h"
#include "shell/preview/PreviewControl.h"
#include "support/text/Text.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace tavrin {

namespace {

constexpr std::size_t placesAtOnce = 256;
static_assert(NamePins::partCount % NamePins::partsAtOnce == 0);

/// The bytes that a file with the name gets; nothing where none can bear it.
std::optional<std::string> bytesOf(const std::u16string& shown) {
    std::u16string name = shown;
    text::replaceUnit(name, u'/', u':');
    return text::toBytes(name);
}

} // namespace

// ---- names

bool HandEdits::pin(const PreviewList::Row& row, const std::u16string& name) {
    if (!bytesOf(name))
        return false;
    std::vector<NameByHand> one;
    one.push_back({row.fullPath, name == computedName(row) ? std::u16string() : name});
    pin(std::move(one));
    return true;
}

void HandEdits::pin(std::vector<NameByHand> names) {
    const auto all = std::make_shared<std::vector<NameByHand>>(std::move(names));
    begin(all->size(), [this, all](std::size_t place) { return changeFor((*all)[place]); });
}

std::optional<NamePins::Change> HandEdits::changeFor(NameByHand& one) const {
    std::optional<std::string> bytes = bytesOf(one.name);
    if (!bytes)
        return std::nullopt;
    if (const auto computed = pins.find(one.path) ? services.engine.computedNames() : nullptr) {
        const auto known = computed->find(one.path);
        if (known != computed->end() && known->second == one.name)
            bytes->clear();
    }
    return NamePins::Change{std::move(one.path), std::move(bytes)};
}

void HandEdits::unpin(std::vector<std::string> paths) {
    const auto all = std::make_shared<std::vector<std::string>>(std::move(paths));
    begin(all->size(), [all](std::size_t place) { return NamePins::Change{std::move((*all)[place]), ""}; });
}

void HandEdits::unpinAll() { beginForAll({.path = {}, .name = ""}); }

void HandEdits::setNamesCount(bool count) {
    if (!isAllowed() || count == pins.namesCount())
        return;
    finish();
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
    const auto all = std::make_shared<const std::vector<RowId>>(std::move(rows));
    begin(all->size(), [this, all, takesPart](std::size_t place) -> std::optional<NamePins::Change> {
        auto path = preview.nodeController().pathOf((*all)[place]);
        if (!path)
            return std::nullopt;
        return NamePins::Change{std::move(*path), std::nullopt, !takesPart};
    });
}

void HandEdits::setTakesPart(std::vector<std::string> paths, bool takesPart) {
    const auto all = std::make_shared<std::vector<std::string>>(std::move(paths));
    begin(all->size(), [all, takesPart](std::size_t place) {
        return NamePins::Change{std::move((*all)[place]), std::nullopt, !takesPart};
    });
}

void HandEdits::tickAll() { beginForAll({.path = {}, .isLeftOut = false}); }

bool HandEdits::takesPart(const std::string& path) const {
    const NamePins::Pin* const pin = pins.find(path);
    return pin == nullptr || !pin->isLeftOut;
}

// ---- all of it

void HandEdits::restore(NamePins former) {
    if (!isAllowed())
        return;
    finish();
    pins = std::move(former);
    publishAndPreview();
}

void HandEdits::change(std::vector<NamePins::Change> changes) {
    pins.apply(std::move(changes));
    if (work.isIdle())
        publish();
}

void HandEdits::drop() {
    work.drop();
    if (pins.isEmpty() && pins.namesCount())
        return;
    pins = {};
    publish();
}

// ---- in slices

void HandEdits::begin(std::size_t count, ChangeAt changeAt) {
    if (!isAllowed() || count == 0)
        return;
    struct Gathering {
        std::size_t place = 0;
        bool isAny = false;
        NamePins::Bunches bunches;
    };
    work.begin([this, count, changeAt = std::move(changeAt), all = std::make_shared<Gathering>()] {
        for (const std::size_t end = std::min(count, all->place + placesAtOnce); all->place < end;)
            if (auto change = changeAt(all->place++)) {
                all->isAny = true;
                all->bunches.add(std::move(*change));
            }
        if (all->place < count)
            return true;
        std::vector<NamePins::Change> bunch = all->bunches.next();
        const bool isOver = bunch.empty();
        if (isOver && all->isAny)
            publishAndPreview();
        pins.apply(std::move(bunch));
        return !isOver;
    });
}

void HandEdits::beginForAll(NamePins::Change change) {
    if (!isAllowed() || (pins.isEmpty() && work.isIdle()))
        return;
    work.begin([this, change = std::move(change), part = std::size_t{0}]() mutable {
        if (part == NamePins::partCount) {
            publishAndPreview();
            return false;
        }
        std::vector<NamePins::Change> bunch;
        for (const std::size_t end = part + NamePins::partsAtOnce; part < end; ++part)
            pins.forEachIn(part, [&](const std::string& path, const NamePins::Pin&) {
                bunch.push_back({path, change.name, change.isLeftOut});
            });
        pins.apply(std::move(bunch));
        return true;
    });
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
