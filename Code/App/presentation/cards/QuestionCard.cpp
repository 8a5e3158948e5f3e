#include "presentation/cards/QuestionCard.h"

#include <utility>

namespace tavrin {

void QuestionCard::ask(const Place& place, const RunQuestion& question, bool thumbnails,
                       std::function<void(ConfirmationChoice)> answer) {
    if (!card || !card->isVisible() || card->window() != place.over.window())
        card = new Card(place.over, true);
    const QuestionText::Rows rows = QuestionText::rowsOf(question);
    if (!rows.paths.empty())
        place.reveal(rows.paths.front());
    const QuestionText::Card text = QuestionText::of(question);
    card->fill(text.content, QuestionText::makeBody(question, thumbnails),
               [answers = text.answers, answer = std::move(answer)](std::size_t button) {
                   answer(answers[button]);
               });
    CardLayer::Places places{place.area, {}};
    if (place.rowsInView)
        places.spots = [rows, rowsInView = place.rowsInView] { return rowsInView(rows); };
    card->setPlaces(std::move(places));
}

void QuestionCard::end() {
    if (card && !card->isAsking())
        card->withdraw();
    card = nullptr;
}

} // namespace tavrin
