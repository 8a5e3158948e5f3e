#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <variant>

namespace tavrin {

// What a worker asks the user in the middle of a run; `askUser` is the way to ask it. Texts are UTF-8, paths
// bytes.

/// Asked before an item is renamed.
struct RenameQuestion {
    std::string path;                    ///< folder of the item
    std::optional<std::string> fullPath; ///< only for an item that heads a chain
    std::string oldName;
    std::string newName;
};

/// Asked before two items exchange their names.
struct SwapQuestion {
    std::string path;
    std::string fullPathFirst;
    std::string fullPathSecond;
    std::string oldName; ///< names of the first item
    std::string newName;
};

/// Asked before a cycle of names is resolved; the unit is the whole folder.
struct NameCycleQuestion {
    std::string fullPath; ///< of the folder
};

/// A failure in the middle of a run.
struct ProblemReport {
    std::string title;
    std::string message;
    std::string fullPath;
};

/// Asked before anything inside a media library is renamed.
struct LibraryWarning {
    enum class Library { iTunes, iPhoto } library;
};

/// The run can't be recorded, so that it could not be taken back: asked before it begins.
struct NoRecordQuestion {
    std::string reason; ///< part of a sentence
};

/// A run failed beyond recovery.
struct PipelineFailure {
    std::string title;
    std::string text;
};

using RunQuestion = std::variant<RenameQuestion, SwapQuestion, NameCycleQuestion, ProblemReport,
                                 LibraryWarning, NoRecordQuestion, PipelineFailure>;

/// The user's answer. The numbers are those that it is known by elsewhere.
enum class ConfirmationChoice : int { stop = 0, one = 1, leaveOut = 2, all = 55 };

/// The answers that a question allows, the one that a front end proposes first; no front end offers another.
/// After a failure there is nothing to leave out.
[[nodiscard]] std::span<const ConfirmationChoice> allowedAnswers(const RunQuestion& question);

/// The one answer to one question. Given at most once, from any thread; an object that dies unanswered
/// answers "stop", so a closed window or an ended event loop frees the worker that waits.
class ConfirmationAnswer {
  public:
    explicit ConfirmationAnswer(std::function<void(ConfirmationChoice)> receiver);
    ~ConfirmationAnswer();
    ConfirmationAnswer(const ConfirmationAnswer&) = delete;
    ConfirmationAnswer& operator=(const ConfirmationAnswer&) = delete;
    void give(ConfirmationChoice choice);

  private:
    std::function<void(ConfirmationChoice)> deliver;
};
using ConfirmationAnswerPointer = std::shared_ptr<ConfirmationAnswer>;

} // namespace tavrin
