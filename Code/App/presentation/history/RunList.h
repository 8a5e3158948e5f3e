#pragma once

#include "presentation/history/HistoryValues.h"

#include <QAbstractListModel>
#include <QDate>
#include <QStyledItemDelegate>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

/// The past runs by day, the newest first: a line for each day, and below it one for each of its runs.
class RunListModel final : public QAbstractListModel {
    Q_OBJECT

  public:
    using QAbstractListModel::QAbstractListModel;

    enum class Tone { plain, warning, failure };
    struct Chip {
        QString text; ///< empty: there is none
        Tone tone = Tone::plain;
    };

    void setRuns(std::vector<ShownRun> newRuns);
    [[nodiscard]] const std::vector<ShownRun>& runs() const { return allRuns; }
    /// Null for the line of a day.
    [[nodiscard]] const ShownRun* runAt(const QModelIndex& index) const;
    /// The line of a run; of the newest one where there is none of this name.
    [[nodiscard]] QModelIndex indexOf(const std::string& name) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

    /// "212 of 1,204 names".
    [[nodiscard]] static QString countOf(const ShownRun& run);
    /// "14:22 · Lofoten · terminal".
    [[nodiscard]] static QString detailsOf(const ShownRun& run);
    [[nodiscard]] static Chip chipOf(const ShownRun& run);

  private:
    struct Line {
        QString day;
        std::optional<std::size_t> run; ///< place in `allRuns`
    };

    std::vector<ShownRun> allRuns;
    std::vector<Line> lines;
};

/// Draws them: a sign, two lines of text, and a chip.
class RunDelegate final : public QStyledItemDelegate {
    Q_OBJECT

  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

  private:
    static void paintRun(QPainter& painter, const QStyleOptionViewItem& option, const ShownRun& run);
};

} // namespace tavrin
