#pragma once

#include "engine/asking/UserPrompts.h"

#include <functional>
#include <string>
#include <vector>

namespace tavrin::test {

/// A user whose answers the test scripts. A question without a script is a failure of the test, and is
/// answered with "stop". Main thread only.
class ScriptedPrompts : public UserPrompts {
  public:
    std::function<ConfirmationChoice(const RenameQuestion&)> onRename;
    std::function<ConfirmationChoice(const SwapQuestion&)> onSwap;
    std::function<ConfirmationChoice(const NameCycleQuestion&)> onNameCycle;
    std::function<ConfirmationChoice(const ProblemReport&)> onProblem;
    std::function<ConfirmationChoice()> onITunesWarning;
    std::function<ConfirmationChoice()> onIPhotoWarning;
    std::function<ConfirmationChoice()> onNoRecord;
    std::function<ConfirmationChoice(const std::string& title, const std::string& text)> onPipelineFailed;

    /// Every question asked, in order: "rename old -> new", "swap old -> new", "cycle path",
    /// "problem title: path", "iTunes", "iPhoto", "failed title".
    std::vector<std::string> asked;

    void confirmRename(const RenameQuestion& question, ConfirmationAnswerPointer answer) override;
    void confirmSwap(const SwapQuestion& question, ConfirmationAnswerPointer answer) override;
    void confirmNameCycle(const NameCycleQuestion& question, ConfirmationAnswerPointer answer) override;
    void reportProblem(const ProblemReport& report, ConfirmationAnswerPointer answer) override;
    void showITunesWarning(ConfirmationAnswerPointer answer) override;
    void showIPhotoWarning(ConfirmationAnswerPointer answer) override;
    void confirmWithoutRecord(const std::string& reason, ConfirmationAnswerPointer answer) override;
    void showPipelineFailed(const std::string& title, const std::string& text,
                            ConfirmationAnswerPointer answer) override;
};

} // namespace tavrin::test
