#pragma once

#include "shell/asking/FrontEnd.h"

#include <QCoreApplication>
#include <functional>
#include <string>

namespace tavrin {

class MessageBars;

/// What the application tells without a question, as bars below the list in place of boxes in its way.
struct AlertBars {
    Q_DECLARE_TR_FUNCTIONS(tavrin::AlertBars)

  public:
    /// Whether an alert only tells: it has one button, and nothing waits for it.
    [[nodiscard]] static bool canShow(const Alert& alert);
    /// The answer comes at once; where the message can be silenced, when it is closed or silenced, unless a
    /// worker waits for it.
    static void show(MessageBars& bars, const Alert& alert, const std::function<void(AlertAnswer)>& answer);
    [[nodiscard]] static bool canShow(NoticeDialog dialog);
    static void show(MessageBars& bars, NoticeDialog dialog, const std::function<void(NoticeAnswer)>& answer);
    /// The first sentence says what has happened, the others why.
    static void showError(MessageBars& bars, const std::string& message);
    static void showNotice(MessageBars& bars, const std::string& text);
};

} // namespace tavrin
