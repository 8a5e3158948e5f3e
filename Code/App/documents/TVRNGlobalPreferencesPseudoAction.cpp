#include "documents/TVRNGlobalPreferencesPseudoAction.h"

#include "actions/ActionError.h"
#include "actions/SortBasedAction.h"
#include "platform/desktop/UserFolders.h"
#include "platform/processes/RunLoop.h"
#include "support/application/MacOSXVersion.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <limits>
#include <vector>

namespace tavrin {

namespace {

constexpr std::int32_t anyNumber = std::numeric_limits<std::int32_t>::max();

/// A setting with its value in new settings and the numbers that mean something.
struct Setting {
    const char* key;
    PropertyValue whenNew;
    std::int32_t highest = 1; ///< 0 is the lowest; of no meaning for a text
    bool isInNewSettings = true;
};

std::vector<Setting> settingsTable() {
    const auto sortingModes = static_cast<std::int32_t>(sortingModeChoices().size());
    return {
        {"retrieveEXIFInformation", true},
        {"quickLookThumbnail", true},
        {"preventAccidentalITunesLibraryDamage", true},
        {"preventAccidentalIPhotoLibraryDamage", true},
        {"previewConflictResolution", true},
        {"automaticSorting", true},
        {"lastAddDirectory", text::fromBytes(UserFolders::home())},
        {"quitAfterRename", 0},
        {"processFiles", 1},
        {"processFolders", 1},
        {"processSubfolders", 0},
        {"previewPaneWidth", 450, anyNumber},
        {"previewMode", 0, anyNumber},
        {"discloseAdvancedOptions", 0},
        {"renameMode", MacOSXVersion::isLionOrLater() ? 0 : 1, 2},
        {"showCurrentName", 1},
        {"showPath", 0},
        {"interactiveMode", 1},
        {"multistep", 0},
        {"silentDroplet", 0},
        {"lockedDroplet", false},
        {"conflictResolutionScheme", 9, 13},
        {"conflictResolutionDontChangeFirst", false, 1, false},
        {"conflictResolutionOrder1", 8, sortingModes - 1},
        {"conflictResolutionOrder2", 2, sortingModes - 1},
        {"conflictResolutionOrder3", 10, sortingModes - 1},
        {"showSummary", 1},
        {"copyFileComments", 1},
        {"accurateFolderSize", 0},
        {"continueAfterRename", true},
        {"keepHistory", 1},
    };
}

PropertyDictionary newSettings() {
    PropertyDictionary values;
    for (const Setting& setting : settingsTable())
        if (setting.isInNewSettings)
            values.emplace(setting.key, setting.whenNew);
    return values;
}

/// What is kept when nothing is stored over a value: an empty value of the same kind.
std::optional<PropertyValue> emptied(const PropertyValue& value) {
    if (value.asText())
        return PropertyValue(u"");
    if (value.isNumber())
        return PropertyValue(0);
    return std::nullopt;
}

} // namespace

TVRNGlobalPreferencesPseudoAction::TVRNGlobalPreferencesPseudoAction()
    : TVRNGlobalPreferencesPseudoAction(newSettings()) {}

TVRNGlobalPreferencesPseudoAction::TVRNGlobalPreferencesPseudoAction(const PropertyDictionary& values)
    : owner(std::this_thread::get_id()) {
    for (const auto& [key, value] : values)
        store(value, key);
    publishPresentValues();
}

TVRNGlobalPreferencesPseudoAction::~TVRNGlobalPreferencesPseudoAction() = default;

PropertyDictionary TVRNGlobalPreferencesPseudoAction::defaultParameters() const {
    PropertyDictionary values = BaseAction::defaultParameters();
    values.merge(newSettings());
    return values;
}

PropertyDictionary TVRNGlobalPreferencesPseudoAction::knownSettings() {
    PropertyDictionary values;
    for (const Setting& setting : settingsTable())
        values.emplace(setting.key, setting.whenNew);
    return values;
}

std::string TVRNGlobalPreferencesPseudoAction::problemOf(std::string_view key, const PropertyValue& value) {
    for (const Setting& setting : settingsTable()) {
        const std::int32_t number = intValue(value);
        if (setting.key == key && !setting.whenNew.asText() && (number < 0 || number > setting.highest))
            return setting.highest == anyNumber
                       ? "expected no number below 0"
                       : fmt::format("expected a number from 0 to {}", setting.highest);
    }
    return {};
}

void TVRNGlobalPreferencesPseudoAction::setParameterList(const PropertyDictionary& list) {
    PropertyDictionary loaded = cleanUpPotentiallyOldParameterList(list);
    loaded.insert_or_assign("automaticSorting", true);
    // Whatever the observers set off reads the new values.
    PropertyDictionary merged = loaded;
    merged.insert(BaseAction::parameterList().begin(), BaseAction::parameterList().end());
    publish(std::move(merged));
    BaseAction::setParameterList(loaded);
    publishPresentValues();
}

void TVRNGlobalPreferencesPseudoAction::setValue(const std::optional<PropertyValue>& value,
                                                 const std::string& key) {
    if (std::this_thread::get_id() == owner) {
        setValueOnOwner(value, key);
        return;
    }
    if (!runLoop)
        throw ActionError("a setting was changed on another thread");
    runLoop->performAndWait([&] { setValueOnOwner(value, key); });
}

void TVRNGlobalPreferencesPseudoAction::setValueOnOwner(const std::optional<PropertyValue>& value,
                                                        const std::string& key) {
    PropertyDictionary next = BaseAction::parameterList();
    if (value) {
        next.insert_or_assign(key, *value);
    } else if (const PropertyValue* present = find(next, key)) {
        if (const std::optional<PropertyValue> empty = emptied(*present))
            next.insert_or_assign(key, *empty);
    }
    publish(std::move(next));
    BaseAction::setValue(value, key);
    publishPresentValues();
}

std::optional<PropertyValue> TVRNGlobalPreferencesPseudoAction::valueForKey(std::string_view key) const {
    if (std::this_thread::get_id() == owner)
        return BaseAction::valueForKey(key);
    const Snapshot values = snapshot();
    const PropertyValue* value = find(*values, key);
    return value ? std::optional(*value) : std::nullopt;
}

std::int32_t TVRNGlobalPreferencesPseudoAction::getParamInt(std::string_view key,
                                                            std::int32_t defaultTo) const {
    const Snapshot values = snapshot();
    const PropertyValue* value = find(*values, key);
    return value ? intValue(*value) : defaultTo;
}

std::u16string TVRNGlobalPreferencesPseudoAction::getParamString(std::string_view key) const {
    const Snapshot values = snapshot();
    const PropertyValue* value = find(*values, key);
    return value ? textValue(*value) : std::u16string();
}

PropertyDictionary TVRNGlobalPreferencesPseudoAction::parameterList() const { return *snapshot(); }

std::string TVRNGlobalPreferencesPseudoAction::lastAddDirectory() const {
    return text::toBytes(getParamString("lastAddDirectory")).value_or("");
}

void TVRNGlobalPreferencesPseudoAction::setLastAddDirectory(const std::string& path) {
    setValue(text::fromBytes(path), "lastAddDirectory");
}

void TVRNGlobalPreferencesPseudoAction::setShouldContinueAfterRename(bool shouldContinue) {
    store(shouldContinue, "continueAfterRename");
    publishPresentValues();
}

ItemFilter TVRNGlobalPreferencesPseudoAction::itemFilter() const {
    const Snapshot values = snapshot();
    const auto isSet = [&](std::string_view key, bool whenAbsent) {
        const PropertyValue* value = find(*values, key);
        return value ? intValue(*value) != 0 : whenAbsent;
    };
    return {.shouldProcessFiles = isSet("processFiles", true),
            .shouldProcessFolders = isSet("processFolders", true),
            .shouldProcessSubfolders = isSet("processSubfolders", false)};
}

bool TVRNGlobalPreferencesPseudoAction::isOn(std::string_view key) const {
    const Snapshot values = snapshot();
    const PropertyValue* value = find(*values, key);
    return value && boolValue(*value);
}

TVRNGlobalPreferencesPseudoAction::Snapshot TVRNGlobalPreferencesPseudoAction::snapshot() const {
    const std::lock_guard lock(publishing);
    return published;
}

void TVRNGlobalPreferencesPseudoAction::publish(PropertyDictionary values) {
    auto next = std::make_shared<const PropertyDictionary>(std::move(values));
    const std::lock_guard lock(publishing);
    published = std::move(next);
}

} // namespace tavrin
