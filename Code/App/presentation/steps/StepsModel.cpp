#include "presentation/steps/StepsModel.h"

#include "actions/BaseRenameAction.h"
#include "actions/CompositeRenameAction.h"
#include "presentation/QtText.h"
#include "presentation/settings/PanelRows.h"
#include "shell/MainController.h"

#include <QMimeData>
#include <QStringList>
#include <algorithm>
#include <array>
#include <utility>

namespace tavrin {

namespace {

const QString stepType = "application/x-tavrin-step";

QString quoted(const QString& text) { return StepsModel::tr("“%1”").arg(text); }

QString shownChoice(const ParameterDescription& parameter, std::int32_t value) {
    const auto choice = std::ranges::find(parameter.choices, value, &ParameterChoice::value);
    return choice == parameter.choices.end() ? QString::number(value) : toQString(choice->label);
}

QString shown(const ParameterDescription& parameter, const PropertyValue& value) {
    const std::int32_t number = intValue(value);
    switch (parameter.kind) {
    case ParameterKind::checkbox:
        return number == 1 ? toQString(parameter.label)
                           : StepsModel::tr("not: %1").arg(toQString(parameter.label));
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
    if (parameter.key == "paddingMode") // which is on unless somebody wanted it otherwise
        return {};
    const auto value = action.valueForKey(parameter.key);
    return value && *value != propertyValue(parameter.whenNew) ? shown(parameter, *value) : QString();
}

/// What an action is set to, in a few words: the values that differ from those of a new one, or all texts
/// where nothing differs.
QString stepSummaryOf(const BaseRenameAction& action) {
    QStringList parts;
    for (const PanelRow& row : panelRowsOf(action))
        for (const ParameterDescription* parameter : row.parameters)
            parts.append(told(action, *parameter));
    parts.removeAll(QString());
    const std::int32_t fragment = action.getParamInt("fragmentSelection", 1);
    if (fragment != 1 && action.isFragmentSelectionSupported())
        parts.append(fragment == 2   ? StepsModel::tr("Extension only")
                     : fragment == 3 ? StepsModel::tr("Extension with dot")
                                     : StepsModel::tr("Whole name"));
    return parts.join(", ");
}

} // namespace

StepsModel::StepsModel(WindowServices shared, QObject* parent)
    : QAbstractListModel(parent), services(shared), rows(shared.controller.compositeAction().count()) {}

void StepsModel::stepsChanged() {
    const int present = services.controller.compositeAction().count();
    if (present != rows) {
        beginResetModel();
        rows = present;
        endResetModel();
    } else if (rows > 0) {
        emit dataChanged(index(0), index(rows - 1));
    }
}

int StepsModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : rows; }

QVariant StepsModel::data(const QModelIndex& index, int role) const {
    const CompositeRenameAction& composite = services.controller.compositeAction();
    if (!index.isValid() || index.row() >= composite.count())
        return {};
    const BaseRenameAction& action = composite.actionAtIndex(index.row());
    const bool isActive = action.getParamInt("active", 0) == 1;
    const QString title = toQString(action.userDescription());
    switch (role) {
    case Qt::DisplayRole:
        return title;
    case Qt::CheckStateRole:
        return isActive ? Qt::Checked : Qt::Unchecked;
    case Qt::AccessibleTextRole:
        return QString("%1, %2, %3")
            .arg(index.row() + 1)
            .arg(title, isActive ? tr("active") : tr("not active"));
    case Qt::ToolTipRole: {
        const QString summary = stepSummaryOf(action);
        return (summary.isEmpty() ? title : title + '\n' + summary).toHtmlEscaped().replace('\n', "<br>");
    }
    case summaryRole:
        return stepSummaryOf(action);
    case numberRole:
        return index.row() + 1;
    case activeRole:
        return isActive;
    default:
        return {};
    }
}

bool StepsModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    CompositeRenameAction& composite = services.controller.compositeAction();
    if (role != Qt::CheckStateRole || index.row() >= composite.count())
        return false;
    composite.actionAtIndex(index.row()).setValue(value.toInt() == Qt::Checked ? 1 : 0, "active");
    emit dataChanged(index, index);
    return true;
}

Qt::ItemFlags StepsModel::flags(const QModelIndex& index) const {
    if (!index.isValid())
        return Qt::ItemIsDropEnabled;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable | Qt::ItemIsDragEnabled;
}

QStringList StepsModel::mimeTypes() const { return {stepType}; }

QMimeData* StepsModel::mimeData(const QModelIndexList& indexes) const {
    auto* data = new QMimeData;
    if (!indexes.isEmpty())
        data->setData(stepType, QByteArray::number(indexes.front().row()));
    return data;
}

/// The step itself is moved here; nothing is left for the view to remove.
bool StepsModel::dropMimeData(const QMimeData* data, Qt::DropAction, int row, int,
                              const QModelIndex& parent) {
    bool isNumber = false;
    const int from = data->data(stepType).toInt(&isNumber);
    if (!isNumber)
        return false;
    int to = row >= 0 ? row : parent.isValid() ? parent.row() : rows;
    if (to > from)
        --to;
    services.controller.actionListCommands().moveAction(from, to);
    return false;
}

} // namespace tavrin
