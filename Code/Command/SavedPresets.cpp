#include "SavedPresets.h"

#include "documents/PresetsManager.h"
#include "platform/files/SandboxHelper.h"
#include "support/text/Text.h"

#include <algorithm>
#include <stdexcept>

namespace tavrin {

SavedPresets::SavedPresets() {
    PresetsManager manager(
        SandboxHelper::getApplicationSupportFolderPath() + "/Presets", SandboxHelper::globalPresetsFolder(),
        []() -> CompositeRenameAction& { throw std::logic_error("presets are listed here, not applied"); });
    manager.loadPresets();
    for (std::size_t i = 0; i < manager.count(); ++i)
        presets.push_back({manager.nameAtIndex(i), manager.descriptionAtIndex(i), manager.pathAtIndex(i)});
    std::ranges::sort(presets, [](const Preset& a, const Preset& b) {
        const int order = text::compareByCodePoint(a.name, b.name);
        return order != 0 ? order < 0 : a.path < b.path;
    });
}

std::optional<std::string> SavedPresets::pathOf(const std::string& name) const {
    const std::u16string wanted = text::fromBytes(name);
    const auto found = std::ranges::find_if(
        presets, [&](const Preset& preset) { return text::canonicallyEqual(preset.name, wanted); });
    return found != presets.end() ? std::optional(found->path) : std::nullopt;
}

} // namespace tavrin
