#include "presentation/steps/StepsModel.h"

#include "actions/BaseRenameAction.h"
#include "actions/CompositeRenameAction.h"
#include "presentation/QtText.h"
#include "presentation/steps/StepSummary.h"
#include "shell/commands/MainController.h"

#include <QMimeData>

namespace tavrin {

namespace {

const QString stepType = "application/x-tavrin-step";

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
        return QString("%1, %2, %3").arg(index.row() + 1).arg(title, isActive ? "active" : "not active");
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
