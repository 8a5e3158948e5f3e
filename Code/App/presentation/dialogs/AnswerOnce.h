#pragma once

#include <functional>
#include <memory>
#include <utility>

namespace tavrin {

/// Gives an answer at most once, from whichever of a dialog's signals comes first. Copies share the answer;
/// one that goes unanswered is dropped uncalled.
template <typename Answer> class AnswerOnce {
  public:
    explicit AnswerOnce(std::function<void(Answer)> handler)
        : pending(std::make_shared<std::function<void(Answer)>>(std::move(handler))) {}

    void operator()(Answer answer) const {
        if (auto handler = std::exchange(*pending, nullptr))
            handler(std::move(answer));
    }

  private:
    std::shared_ptr<std::function<void(Answer)>> pending;
};

} // namespace tavrin
