#pragma once

#include "presentation/cards/QuestionCard.h"

class QStackedWidget;
class QTableView;

namespace tavrin {

class MainController;
class PreviewTableModel;

/// Where the cards of questions stand over the list: beside the rows that they are about.
class QuestionRows {
  public:
    /// All of them live as long as the window; `pages` shows the table, or what stands in its place.
    QuestionRows(MainController& owner, QStackedWidget& pagesOfList, QTableView& table,
                 PreviewTableModel& shown)
        : controller(owner), pages(pagesOfList), view(table), model(shown) {}

    [[nodiscard]] QuestionCard::Place place();

  private:
    /// Into the upper third, so that there is room for the card below.
    void reveal(const std::string& path);
    [[nodiscard]] std::vector<QRect> inView(const QuestionText::Rows& rows) const;
    [[nodiscard]] QRect areaOfList() const;

    MainController& controller;
    QStackedWidget& pages;
    QTableView& view;
    PreviewTableModel& model;
};

} // namespace tavrin
