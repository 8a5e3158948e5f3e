#pragma once

#include "presentation/WindowServices.h"

#include <QAbstractListModel>
#include <QString>

namespace tavrin {

/// The steps of the chain as rows. The check state is whether a step is active. Dragging a row moves its
/// step.
class StepsModel final : public QAbstractListModel {
    Q_OBJECT

  public:
    static constexpr int summaryRole = Qt::UserRole;
    static constexpr int numberRole = Qt::UserRole + 1;
    static constexpr int activeRole = Qt::UserRole + 2;

    StepsModel(WindowServices services, QObject* parent);

    /// The chain has changed: rows are told anew where their number differs, else as changed.
    void stepsChanged();

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
    [[nodiscard]] Qt::DropActions supportedDropActions() const override { return Qt::MoveAction; }
    [[nodiscard]] QStringList mimeTypes() const override;
    [[nodiscard]] QMimeData* mimeData(const QModelIndexList& indexes) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;

  private:
    const WindowServices services;
    int rows;
};

class BaseRenameAction;

/// What an action is set to, in a few words: the values that differ from those of a new one, or all texts
/// where nothing differs.
[[nodiscard]] QString stepSummaryOf(const BaseRenameAction& action);

} // namespace tavrin
