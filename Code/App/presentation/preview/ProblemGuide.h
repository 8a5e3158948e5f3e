#pragma once

#include "presentation/preview/PreviewTableModel.h"

#include <QCoreApplication>
#include <cstddef>
#include <functional>

namespace tavrin {

class MainController;
class MessageBars;

/// Says below the list how many items can't be renamed as shown, why that in hand or the next one can't, and
/// leads to them; else how many names were changed because they would have been the same. It stops nothing.
class ProblemGuide {
    Q_DECLARE_TR_FUNCTIONS(tavrin::ProblemGuide)

  public:
    /// What its buttons lead to.
    struct Ways {
        std::function<void(bool forward)> go;
        std::function<void()> showOnlyProblems;
        std::function<void()> leaveOut;
        std::function<void()> showOnlyDistinct;
        std::function<int()> current; ///< the row in hand; -1 for none
    };
    ProblemGuide(MainController& owner, PreviewTableModel& shown, MessageBars& messages, Ways buttons)
        : controller(owner), model(shown), bars(messages), ways(std::move(buttons)) {}

    /// A preview has ended.
    void refresh();
    /// Another row is in hand.
    void tell();
    /// The next row with a problem from this one on, or the one before; -1 where there is none.
    [[nodiscard]] int behind(int row, bool forward) const;

  private:
    void showProblems();
    void showMadeDistinct(std::size_t count);
    [[nodiscard]] QString count() const;

    MainController& controller;
    PreviewTableModel& model;
    MessageBars& bars;
    Ways ways;
};

} // namespace tavrin
