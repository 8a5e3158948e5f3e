#include "documents/TVRNGlobalPreferencesPseudoAction.h"

#include "support/text/Text.h"

namespace tavrin {

TVRNGlobalPreferencesPseudoAction::TVRNGlobalPreferencesPseudoAction()
    : TVRNGlobalPreferencesPseudoAction(Settings::whenNew()) {}

TVRNGlobalPreferencesPseudoAction::TVRNGlobalPreferencesPseudoAction(const PropertyDictionary& values)
    : published(Settings::of(values)) {
    for (const auto& [key, value] : values)
        store(value, key);
}

PropertyDictionary TVRNGlobalPreferencesPseudoAction::defaultParameters() const {
    PropertyDictionary values = BaseAction::defaultParameters();
    values.merge(Settings::whenNew());
    return values;
}

void TVRNGlobalPreferencesPseudoAction::setParameterList(const PropertyDictionary& list) {
    PropertyDictionary loaded = cleanUpPotentiallyOldParameterList(list);
    loaded.insert_or_assign(settingKey::automaticSorting, true);
    BaseAction::setParameterList(loaded);
}

std::string TVRNGlobalPreferencesPseudoAction::lastAddDirectory() const {
    return text::toBytes(getParamString(settingKey::lastAddDirectory)).value_or("");
}

void TVRNGlobalPreferencesPseudoAction::setLastAddDirectory(const std::string& path) {
    setValue(text::fromBytes(path), settingKey::lastAddDirectory);
}

void TVRNGlobalPreferencesPseudoAction::setShouldContinueAfterRename(bool shouldContinue) {
    store(shouldContinue, settingKey::continueAfterRename);
    valuesHaveChanged();
}

void TVRNGlobalPreferencesPseudoAction::setPreviewPaneWidthAsInt(std::int32_t width) {
    store(width, settingKey::previewPaneWidth);
    valuesHaveChanged();
}

Settings TVRNGlobalPreferencesPseudoAction::values() const {
    const std::lock_guard lock(publishing);
    return published;
}

void TVRNGlobalPreferencesPseudoAction::valuesHaveChanged() {
    const Settings next = Settings::of(parameterList());
    const std::lock_guard lock(publishing);
    published = next;
}

} // namespace tavrin
