#include "Commands.h"
#include "SavedPresets.h"
#include "Terminal.h"
#include "support/text/DisplayText.h"
#include "support/text/Text.h"

#include <algorithm>

namespace tavrin {

namespace {

std::string line(const SavedPresets::Preset& preset, const Terminal& terminal) {
    return terminal.shown(text::toUtf8(preset.name)) + '\t' +
           terminal.shown(text::toUtf8(preset.description)) + '\t' + terminal.shown(preset.path) + '\n';
}

std::string object(const SavedPresets::Preset& preset) {
    std::string json = "{\"name\":";
    display::appendJson(preset.name, json);
    json += ",\"description\":";
    display::appendJson(preset.description, json);
    json += ",\"file\":";
    display::appendJson(text::fromBytes(preset.path), json);
    return json + "}\n";
}

bool holdsControlCharacters(std::u16string_view name) {
    return std::ranges::any_of(
        name, [](char16_t unit) { return text::isControl(unit) || unit == u'\u2028' || unit == u'\u2029'; });
}

ExitStatus printNames(const SavedPresets& presets, Terminal& terminal) {
    for (const SavedPresets::Preset& preset : presets.all())
        if (!holdsControlCharacters(preset.name))
            terminal.output().append(text::toUtf8(preset.name) + '\n');
    return terminal.finish();
}

} // namespace

ExitStatus runPresetsCommand(const PresetsOptions& options) {
    const SavedPresets presets;
    Terminal terminal;
    if (options.namesOnly)
        return printNames(presets, terminal);
    for (const SavedPresets::Preset& preset : presets.all())
        terminal.output().append(options.json ? object(preset) : line(preset, terminal));
    return terminal.finish();
}

} // namespace tavrin
