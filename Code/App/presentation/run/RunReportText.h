#pragma once

#include "presentation/MessageBars.h"
#include "presentation/cards/CardContent.h"
#include "shell/asking/FrontEnd.h"

#include <QCoreApplication>
#include <functional>
#include <vector>

namespace tavrin {

/// How a run has ended, in the words of the bar below the list, or of a card where the program ends with it.
struct RunReportText {
    Q_DECLARE_TR_FUNCTIONS(tavrin::RunReportText)

  public:
    static constexpr const char* barName = "runReport";

    struct Effects {
        std::function<void()> undo;
        std::function<void()> redo;
        std::function<void()> showHistory;
        std::function<void()> showNotRenamed; ///< empty where there is no list to show them in
    };
    [[nodiscard]] static BarMessage barOf(const RunReport& report, const Effects& effects);

    /// With `answers[i]` for the button i.
    struct Card {
        CardContent content;
        std::vector<ReportAnswer> answers;
    };
    [[nodiscard]] static Card cardOf(const RunReport& report);
    /// "title: message: path", a line each.
    [[nodiscard]] static QString reasons(const RunReport& report);
};

} // namespace tavrin
