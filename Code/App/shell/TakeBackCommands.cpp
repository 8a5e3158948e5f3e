#include "shell/TakeBackCommands.h"

#include "engine/RenameEngine.h"
#include "shell/ConfirmationFlow.h"
#include "shell/FrontEnd.h"
#include "shell/PreviewControl.h"
#include "store/ItemStore.h"
#include "store/StoreContext.h"
#include "support/Text.h"

#include <fmt/format.h>

#include <cctype>

namespace tavrin {

namespace {

constexpr std::size_t mostRowsShown = 1000;

std::string countOf(std::int64_t count) { return count == 1 ? "1 Item" : fmt::format("{} Items", count); }

std::string asSentence(std::string part) {
    part.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(part.front())));
    return part.ends_with('.') ? part : part + ".";
}

/// "Undo Rename of 487 Items in Lofoten".
std::string descriptionOf(const ChosenRun& chosen) {
    const PastRun& run = chosen.run;
    const bool finishes = chosen.toNewNames && !run.isUndone && (!run.end || run.end->wasStopped);
    std::string text = chosen.what == RunKind::undo ? "Undo Rename" : "Redo Rename";
    if (finishes)
        text = run.isForward() ? "Finish Rename" : "Finish Undo";
    if (run.end && !finishes)
        text += " of " + countOf(run.end->changed);
    const std::string folder = run.folder.substr(run.folder.rfind('/') + 1);
    if (!folder.empty())
        text += " in " + text::toUtf8(text::fromBytes(folder));
    return text;
}

TakeBackQuestion questionOf(const ChosenRun& chosen, const TakeBackResult& preview) {
    TakeBackQuestion question;
    question.title = descriptionOf(chosen) + "?";
    question.isUndo = chosen.what == RunKind::undo;
    question.count = static_cast<std::size_t>(preview.planned);
    question.problems = preview.errors;
    StoreContext context(*preview.store, StoreContext::MergePolicy::storeWins);
    const FetchRequest request{
        FetchEntity::file, Predicate::isTrue(NodeKey::diff), {{NodeKey::name}}, mostRowsShown};
    for (const RowId row : context.fetch(request))
        question.rows.push_back({context.parentPath(row), context.name(row), context.finalName(row)});
    return question;
}

} // namespace

RunHistory TakeBackCommands::history() const { return RunHistory(services.engine.historyPlace().folder); }

std::string TakeBackCommands::description(RunKind what) const {
    const auto chosen = history().choose(what, "");
    const auto* run = std::get_if<ChosenRun>(&chosen);
    return run ? descriptionOf(*run) : std::string();
}

void TakeBackCommands::takeBack(RunKind what, const std::string& run) {
    const auto found = history().choose(what, run);
    if (const auto* reason = std::get_if<std::string>(&found)) {
        tell(what == RunKind::undo ? "Nothing was undone." : "Nothing was redone.", asSentence(*reason));
        return;
    }
    const auto& chosen = std::get<ChosenRun>(found);
    services.engine.processTakeBack(
        services.progress, {.chosen = chosen, .isPreview = true},
        [this, chosen](EngineHost&, const TakeBackResult& preview) { ask(chosen, preview); });
}

void TakeBackCommands::ask(const ChosenRun& chosen, const TakeBackResult& preview) {
    if (preview.planned == 0) {
        if (preview.errors.empty())
            perform(chosen); // all is as it was to be; the history shall know it
        else
            services.frontEnd.showProcessingErrors({preview.errors, preview.errors.size(), ""}, [] {});
        return;
    }
    services.frontEnd.askToTakeBack(questionOf(chosen, preview), [this, chosen](bool agrees) {
        if (agrees)
            perform(chosen);
    });
}

void TakeBackCommands::perform(const ChosenRun& chosen) {
    services.engine.processTakeBack(services.progress, {.chosen = chosen},
                                    [this](EngineHost&, const TakeBackResult& result) {
                                        services.engine.rereadAtNextPreview();
                                        units.preview.initiateDelayedPreviewUpdate();
                                        units.confirmation.showTakeBackDialog(result);
                                    });
}

void TakeBackCommands::tellInterruptedRun() {
    const auto run = history().interruptedRun();
    if (!run)
        return;
    const std::string folder = text::toUtf8(text::fromBytes(run->folder));
    services.frontEnd.showAlert(
        {.kind = AlertKind::interruptedRun,
         .title = "A renaming was interrupted.",
         .text = fmt::format(
             "It began on {} in {}. You can undo what it has done, or let it be finished. Nothing "
             "is touched before you have seen what will be done.",
             run->heading.time, folder),
         .buttons = {"Undo…", "Finish…", "Later"}},
        [this, name = run->name](AlertAnswer answer) {
            if (answer.button < 2)
                takeBack(answer.button == 0 ? RunKind::undo : RunKind::redo, name);
        });
}

void TakeBackCommands::tell(const std::string& title, const std::string& text) {
    services.frontEnd.showAlert({.kind = AlertKind::nothingToTakeBack,
                                 .style = AlertStyle::informational,
                                 .title = title,
                                 .text = text,
                                 .buttons = {"OK"}},
                                [](AlertAnswer) {});
}

} // namespace tavrin
