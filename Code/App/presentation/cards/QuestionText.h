#pragma once

#include "engine/asking/RunQuestion.h"
#include "presentation/cards/CardContent.h"

#include <QCoreApplication>
#include <string>
#include <vector>

class QWidget;

namespace tavrin {

/// The questions of a run in the words of cards.
struct QuestionText {
    Q_DECLARE_TR_FUNCTIONS(tavrin::QuestionText)

  public:
    /// With `answers[i]` for the button i.
    struct Card {
        CardContent content;
        std::vector<ConfirmationChoice> answers;
    };
    /// Of a question with names or a failure; its object name is that of the question ("confirmRenameWindow"
    /// …).
    [[nodiscard]] static Card of(const RunQuestion& question);
    /// What such a card shows below its head; `thumbnails`: the item is pictured by its content.
    [[nodiscard]] static QWidget* makeBody(const RunQuestion& question, bool thumbnails);

    /// The rows that a question is about: those at these paths, in bytes, or all of a folder.
    struct Rows {
        std::vector<std::string> paths;
        std::string folder; ///< empty: no folder

        /// Whether a row at this path is one.
        [[nodiscard]] bool hold(const std::string& path) const;
    };
    [[nodiscard]] static Rows rowsOf(const RunQuestion& question);
};

} // namespace tavrin
