#include "presentation/steps/StepSummary.h"

#include "actions/BaseRenameAction.h"
#include "presentation/QtText.h"
#include "presentation/settings/PanelRows.h"

#include <QStringList>
#include <algorithm>
#include <array>
#include <utility>

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
        return QString("%1 %2").arg(toQString(parameter.label)).arg(number + parameter.shownOffset);
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

/// What is looked for, and what takes its place.
constexpr std::array<std::pair<std::string_view, std::string_view>, 3> replacements{{
    {"searchTerm", "replacementTerm"},
    {"searchPattern", "replacementTerm"},
    {"replace", "with"},
}};

const ParameterDescription* shownParameter(const BaseRenameAction& action, std::string_view key) {
    for (const ParameterDescription& parameter : action.parameters())
        if (parameter.key == key && !parameter.isHidden)
            return &parameter;
    return nullptr;
}

/// The pair that a parameter is a part of, where the action has both.
const std::pair<std::string_view, std::string_view>* pairWith(const BaseRenameAction& action,
                                                              std::string_view key) {
    for (const auto& pair : replacements)
        if ((key == pair.first || key == pair.second) && shownParameter(action, pair.first) &&
            shownParameter(action, pair.second))
            return &pair;
    return nullptr;
}

/// Empty for what has its default, and for what is told with another parameter.
QString told(const BaseRenameAction& action, const ParameterDescription& parameter) {
    if (const auto* pair = pairWith(action, parameter.key)) {
        const QString term = toQString(action.getParamString(pair->first));
        if (parameter.key == pair->second || term.isEmpty())
            return {};
        return quoted(term) + " → " + quoted(toQString(action.getParamString(pair->second)));
    }
    const auto value = action.valueForKey(parameter.key);
    return value && *value != propertyValue(parameter.whenNew) ? shown(parameter, *value) : QString();
}

} // namespace

QString stepSummaryOf(const BaseRenameAction& action) {
    QStringList parts;
    for (const PanelRow& row : panelRowsOf(action))
        for (const ParameterDescription* parameter : row.parameters)
            parts.append(told(action, *parameter));
    parts.removeAll(QString());
    const std::int32_t fragment = action.getParamInt("fragmentSelection", 1);
    if (fragment != 1 && action.isFragmentSelectionSupported())
        parts.append(fragment == 2 ? "Extension only" : fragment == 3 ? "Extension with dot" : "Whole name");
    return parts.join(", ");
}

} // namespace tavrin
