#include "common/ScriptedPrompts.h"

#include <gtest/gtest.h>

#include <utility>

namespace tavrin::test {

namespace {

template <typename Script, typename... Arguments>
void answerBy(const Script& script, ScriptedPrompts& prompts, std::string question,
              ConfirmationAnswerPointer answer, const Arguments&... arguments) {
    prompts.asked.push_back(std::move(question));
    if (script)
        answer->give(script(arguments...));
    else
        ADD_FAILURE() << "unexpected question: " << prompts.asked.back();
}

} // namespace

void ScriptedPrompts::confirmRename(const RenameQuestion& question, ConfirmationAnswerPointer answer) {
    answerBy(onRename, *this, "rename " + question.oldName + " -> " + question.newName, std::move(answer),
             question);
}

void ScriptedPrompts::confirmSwap(const SwapQuestion& question, ConfirmationAnswerPointer answer) {
    answerBy(onSwap, *this, "swap " + question.oldName + " -> " + question.newName, std::move(answer),
             question);
}

void ScriptedPrompts::confirmNameCycle(const NameCycleQuestion& question, ConfirmationAnswerPointer answer) {
    answerBy(onNameCycle, *this, "cycle " + question.fullPath, std::move(answer), question);
}

void ScriptedPrompts::reportProblem(const ProblemReport& report, ConfirmationAnswerPointer answer) {
    answerBy(onProblem, *this, "problem " + report.title + ": " + report.fullPath, std::move(answer), report);
}

void ScriptedPrompts::showITunesWarning(ConfirmationAnswerPointer answer) {
    answerBy(onITunesWarning, *this, "iTunes", std::move(answer));
}

void ScriptedPrompts::confirmWithoutRecord(const std::string& reason, ConfirmationAnswerPointer answer) {
    answerBy(onNoRecord, *this, "no record: " + reason, std::move(answer));
}

void ScriptedPrompts::showIPhotoWarning(ConfirmationAnswerPointer answer) {
    answerBy(onIPhotoWarning, *this, "iPhoto", std::move(answer));
}

void ScriptedPrompts::showPipelineFailed(const std::string& title, const std::string& text,
                                         ConfirmationAnswerPointer answer) {
    answerBy(onPipelineFailed, *this, "failed " + title, std::move(answer), title, text);
}

} // namespace tavrin::test
