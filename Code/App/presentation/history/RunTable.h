#pragma once

#include "presentation/LatestWork.h"
#include "presentation/history/RunItems.h"

#include <QTableView>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace tavrin {

/// The items of one past run, read, looked for and put in order by workers. Object name "historyItems".
class RunTable final : public QTableView {
    Q_OBJECT

  public:
    RunTable();

    /// Empties it; what was asked for does not come any more.
    void clear();
    /// Reads the items of a run in place of those that are there, then looks where they are.
    void read(const PastRun& run);
    /// Looks anew where they are. What is shown stays until that is known.
    void look(const PastRun& run);
    /// Nobody sees it: what has become of the items need not be known.
    void stopLooking() { looking.cancel(); }

    /// Shows only items one of whose names has the text in it.
    void setFilter(const QString& text);
    /// Makes an item the current one, as soon as it is shown.
    void seek(std::uint32_t item);
    void setPictures(bool areShown);
    void applyColours();

    [[nodiscard]] const RunContents& contents() const { return *items->contents(); }
    /// Of the current item if it is selected, else of the first; in bytes, and empty where there is none.
    [[nodiscard]] std::string pathInHand() const;
    /// Hands over the rows as text, made by a worker.
    void withText(bool onlySelected, std::function<void(const QString&)> then);

  signals:
    /// What has become of the items is known.
    void looked();
    /// A character that is not for the table.
    void typed(const QString& text);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    using Read = std::pair<std::shared_ptr<RunContents>, RunItemsModel::Order>;

    void setUpHeaders();
    void sortBy(int column);
    void arrange();
    void show(RunItemsModel::Contents contents, RunItemsModel::Order order);
    void goToSought();
    void sizeColumns();

    RunItemsModel* items;
    RunItemsModel::Arrangement arrangement;
    std::optional<std::uint32_t> sought;
    bool areColumnsOwn = false; ///< the user has made them as wide as they are
    bool isSizingColumns = false;
    LatestWork reading;
    LatestWork looking;
    LatestWork arranging;
    LatestWork writing;
};

} // namespace tavrin
