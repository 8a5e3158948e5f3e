#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tavrin {

/// The user's answer to a request of a running rename. The numbers are those that the run knows them by.
enum class ConfirmationChoice : int { stop = 0, one = 1, leaveOut = 2, all = 55 };

/// Asks before an item is renamed. Names are UTF-8 for display, paths are bytes.
struct RenameQuestion {
    std::string path;                    ///< folder of the item
    std::optional<std::string> fullPath; ///< only for an item that heads a chain
    std::string oldName;
    std::string newName;
};

/// Asks before two items exchange their names.
struct SwapQuestion {
    std::string path;
    std::string fullPathFirst;
    std::string fullPathSecond;
    std::string oldName; ///< names of the first item
    std::string newName;
};

/// Asks before a cycle of names is resolved; the unit is the whole folder.
struct NameCycleQuestion {
    std::string fullPath; ///< of the folder
};

/// Reports a failure in the middle of a run.
struct ProblemReport {
    std::string title;
    std::string message;
    std::string fullPath;
    std::string path; ///< folder of the full path
};

/// The one answer to one request. Given at most once, from any thread; an object that dies unanswered
/// answers "stop", so a closed window or an ended event loop frees the worker that waits.
class ConfirmationAnswer {
  public:
    explicit ConfirmationAnswer(std::function<void(ConfirmationChoice)> deliver);
    ~ConfirmationAnswer();
    ConfirmationAnswer(const ConfirmationAnswer&) = delete;
    ConfirmationAnswer& operator=(const ConfirmationAnswer&) = delete;
    void give(ConfirmationChoice choice);

  private:
    std::function<void(ConfirmationChoice)> deliver;
};
using ConfirmationAnswerPointer = std::unique_ptr<ConfirmationAnswer>;

/// How a worker reaches the user. All are called on the main thread and return at once; the worker waits for
/// the answer.
class UserPrompts {
  public:
    virtual ~UserPrompts() = default;
    virtual void confirmRename(const RenameQuestion& question, ConfirmationAnswerPointer answer) = 0;
    virtual void confirmSwap(const SwapQuestion& question, ConfirmationAnswerPointer answer) = 0;
    virtual void confirmNameCycle(const NameCycleQuestion& question, ConfirmationAnswerPointer answer) = 0;
    virtual void reportProblem(const ProblemReport& report, ConfirmationAnswerPointer answer) = 0;
    /// `one` for "Continue", `stop` for "Abort".
    virtual void showITunesWarning(ConfirmationAnswerPointer answer) = 0;
    virtual void showIPhotoWarning(ConfirmationAnswerPointer answer) = 0;
    /// The run can't be recorded, so that it could not be taken back: `one` to go on all the same, `stop` not
    /// to begin. The reason is a part of a sentence.
    virtual void confirmWithoutRecord(const std::string& reason, ConfirmationAnswerPointer answer) = 0;
    /// A run failed beyond recovery; any answer means that the user has seen it.
    virtual void showPipelineFailed(const std::string& title, const std::string& text,
                                    ConfirmationAnswerPointer answer) = 0;
};

} // namespace tavrin
