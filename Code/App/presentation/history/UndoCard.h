#pragma once

#include "presentation/MessageBars.h"
#include "presentation/cards/CardContent.h"
#include "shell/asking/FrontEnd.h"

#include <QCoreApplication>
#include <functional>

namespace tavrin {

/// What is asked before an undo that is not plain, and told of a run that was cut off, in the words of cards
/// and bars.
struct UndoCard {
    Q_DECLARE_TR_FUNCTIONS(tavrin::UndoCard)

  public:
    /// The buttons stand for the answers in their order.
    [[nodiscard]] static CardContent contentOf(const UndoQuestion& question);
    static constexpr const char* barName = "interruptedRunBar";
    [[nodiscard]] static BarMessage barOf(const InterruptedRun& run,
                                          std::function<void(InterruptedRunAnswer)> answer);
};

} // namespace tavrin
