#include "presentation/steps/StepSummary.h"

#include "actions/BaseRenameAction.h"
#include "presentation/QtText.h"
#include "presentation/settings/PanelRows.h"

#include <QStringList>
#include <algorithm>

namespace tavrin {

namespace {

QString quoted(const QString& text) { return QString("“%1”").arg(text); }

QString shownChoice(const ParameterDescription& parameter, std::int32_t value) {
    const auto choice = std::ranges::find(parameter.choices, value, &ParameterChoice::value);
    return choice == parameter.choices.end() ? QString::number(value) : toQString(choice->label);
}

QString shown(const ParameterDescription& parameter, const PropertyValue& value) {
    const std::int32_t number = intValue(value);
    switch (parameter.kind) {
    case ParameterKind::checkbox:
        return number == 1 ? toQString(parameter.label) : QString("not: %1").arg(toQString(parameter.label));
    case ParameterKind::choice:
        return shownChoice(parameter, number);
    case ParameterKind::number:
        return QString("%1 %2").arg(toQString(parameter.label)).arg(number + shownOffsetOf(parameter.key));
    case ParameterKind::status:
        return {};
    case ParameterKind::text:
    case ParameterKind::character:
    case ParameterKind::pattern:
    case ParameterKind::file:
        return quoted(toQString(textValue(value)));
    }
    return {};
}

} // namespace

QString stepSummaryOf(const BaseRenameAction& action) {
    QStringList parts;
    for (const PanelRow& row : panelRowsOf(action)) {
        for (const ParameterDescription* parameter : row.parameters) {
            const auto value = action.valueForKey(parameter->key);
            if (value && *value != propertyValue(parameter->whenNew))
                parts.append(shown(*parameter, *value));
        }
    }
    parts.removeAll(QString());
    const std::int32_t fragment = action.getParamInt("fragmentSelection", 1);
    if (fragment != 1 && action.isFragmentSelectionSupported())
        parts.append(fragment == 2 ? "Extension only" : fragment == 3 ? "Extension with dot" : "Whole name");
    return parts.join(", ");
}

} // namespace tavrin
