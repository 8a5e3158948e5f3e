#pragma once

#include "engine/asking/RunQuestion.h"
#include "presentation/cards/Card.h"
#include "presentation/cards/QuestionText.h"

#include <QPointer>
#include <functional>
#include <string>
#include <vector>

class QWidget;

namespace tavrin {

/// The questions of a run, one after the other on one card.
class QuestionCard {
  public:
    /// Where the card lies, and what it needs to know of a list there. All are called on the main thread.
    struct Place {
        QWidget& over;
        std::function<QRect()> area = {};
        /// Brings the row at a path into view, if it is on the list.
        std::function<void(const std::string& path)> reveal = [](const std::string&) {};
        /// Where the rows in view are that the question is about.
        std::function<std::vector<QRect>(const QuestionText::Rows&)> rowsInView = {};
    };

    /// Asks a question that has a card with names. The answer is one that is allowed; it is dropped uncalled
    /// where the window goes.
    void ask(const Place& place, const RunQuestion& question, bool thumbnails,
             std::function<void(ConfirmationChoice)> answer);
    /// No question follows: the card that has its answer goes at once.
    void end();

  private:
    QPointer<Card> card;
};

} // namespace tavrin
