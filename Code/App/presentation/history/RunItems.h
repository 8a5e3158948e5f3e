#pragma once

#include "presentation/history/HistoryValues.h"
#include "presentation/preview/ThumbnailLoader.h"

#include <QAbstractTableModel>
#include <cstdint>
#include <memory>
#include <vector>

namespace tavrin {

/// The items of a past run: picture, old name, new name, and what has become of them. What is shown of them,
/// and in which order, is worked out by a worker.
class RunItemsModel final : public QAbstractTableModel {
    Q_OBJECT

  public:
    enum Column { pictureColumn, oldNameColumn, newNameColumn, nowColumn };
    using Contents = std::shared_ptr<const RunContents>;
    using Order = std::vector<std::uint32_t>; ///< places in the contents

    /// What the user wants to see. A column of -1: the order of the record.
    struct Arrangement {
        int column = -1;
        Qt::SortOrder direction = Qt::AscendingOrder;
        QString filter = {}; ///< a part of one of the names
        bool operator==(const Arrangement&) const = default;
    };
    /// Any thread.
    [[nodiscard]] static Order arranged(const RunContents& contents, const Arrangement& how);

    explicit RunItemsModel(QObject* parent = nullptr);

    /// What stays in its place keeps its selection.
    void setContents(Contents newContents, Order newOrder);
    [[nodiscard]] const Contents& contents() const { return shown; }
    [[nodiscard]] const RunContents::Item& itemAt(int row) const {
        return shown->items[order[static_cast<std::size_t>(row)]];
    }
    [[nodiscard]] const Order& rows() const { return order; }
    void setPictures(bool areShown, int pixels, double ratio);
    [[nodiscard]] ThumbnailLoader& thumbnails() { return loader; }

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /// "has the new name"; "…" as long as nobody has looked. Any thread.
    [[nodiscard]] static QString nowOf(const RunContents::Item& item);
    /// "old, tab, new, tab, now", a line each. Any thread.
    [[nodiscard]] static QString textOf(const RunContents& contents, const Order& rows);

  private:
    [[nodiscard]] QVariant pictureOf(int row) const;
    [[nodiscard]] QVariant colourOf(const RunContents::Item& item) const;

    Contents shown = std::make_shared<RunContents>();
    Order order;
    bool hasPictures = false;
    mutable ThumbnailLoader loader;
};

} // namespace tavrin
