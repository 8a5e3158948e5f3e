#include "shell/commands/TakeBackCommands.h"

#include "engine/pipeline/RenameEngine.h"
#include "shell/asking/ConfirmationFlow.h"
#include "shell/asking/FrontEnd.h"
#include "shell/preview/PreviewControl.h"
#include "store/contexts/StoreContext.h"
#include "store/paging/ItemStore.h"
#include "support/text/PathParts.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <algorithm>
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
    if (!run.problem.empty() || run.isUnderWay)
        return text;
    if (run.end && !finishes)
        text += " of " + countOf(run.end->changed);
    if (const std::string_view folder = lastComponent(run.folder); !folder.empty())
        text += " in " + text::toUtf8(text::fromBytes(folder));
    return text;
}

TakeBackQuestion questionOf(const ChosenRun& chosen, const TakeBackResult& preview) {
    TakeBackQuestion question;
    question.title = descriptionOf(chosen) + "?";
    question.verb = question.title.substr(0, question.title.find(' '));
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

std::string TakeBackCommands::description(RunKind what) const {
    const auto chosen = RunHistory(services.engine.historyPlace().folder).outlook(what);
    return chosen ? descriptionOf(*chosen) : std::string();
}

void TakeBackCommands::takeBack(RunKind what, const std::string& run) {
    if (!questionInHand.expired())
        return;
    const auto question = std::make_shared<char>();
    questionInHand = question;
    services.engine.readHistory([=, this](const RunHistory& history) {
        return [=, this, found = history.choose(what, run)] {
            if (const auto* chosen = std::get_if<ChosenRun>(&found)) {
                preview(*chosen, question);
                return;
            }
            questionInHand.reset();
            tell(what == RunKind::undo ? "Nothing was undone." : "Nothing was redone.",
                 asSentence(std::get<std::string>(found)));
        };
    });
}

void TakeBackCommands::preview(const ChosenRun& chosen, const std::shared_ptr<void>& question) {
    services.engine.processTakeBack(
        services.progress, {.chosen = chosen, .isPreview = true},
        [=, this](EngineHost&, const TakeBackResult& result) { ask(chosen, result, question); });
}

void TakeBackCommands::ask(const ChosenRun& chosen, const TakeBackResult& preview,
                           const std::shared_ptr<void>& question) {
    // The reading of the record has spoken in the place of the list's counts.
    if (!units.preview.isPreviewPending()) {
        services.frontEnd.selectPreviewTab(PreviewTab::status);
        units.preview.showStats();
    }
    if (preview.planned == 0) {
        questionInHand.reset();
        if (preview.errors.empty())
            perform(chosen); // all is as it was to be; the history shall know it
        else
            services.frontEnd.showProcessingErrors({preview.errors, preview.errors.size(), ""}, [] {});
        return;
    }
    services.frontEnd.askToTakeBack(questionOf(chosen, preview), [this, chosen, question](bool agrees) {
        questionInHand.reset();
        if (agrees)
            perform(chosen);
    });
}

void TakeBackCommands::perform(const ChosenRun& chosen) {
    services.engine.processTakeBack(services.progress, {.chosen = chosen, .isOnShow = true},
                                    [this](EngineHost&, const TakeBackResult& result) {
                                        services.engine.rereadAtNextPreview();
                                        units.preview.initiateDelayedPreviewUpdate();
                                        units.confirmation.tellEndOfTakeBack(result);
                                    });
}

void TakeBackCommands::tellInterruptedRun() {
    services.engine.readHistory([this](const RunHistory& history) -> std::function<void()> {
        if (const auto run = history.interruptedRun())
            return [this, run = *run] { tellOf(run); };
        return {};
    });
}

void TakeBackCommands::tellOf(const PastRun& run) {
    const std::string folder = text::toUtf8(text::fromBytes(run.folder));
    const std::string& time = run.heading.time; // ISO 8601
    const std::size_t day = std::min(time.find('T'), time.size());
    services.frontEnd.showAlert(
        {.kind = AlertKind::interruptedRun,
         .title = "A renaming was interrupted.",
         .text = fmt::format(
             "It began on {} at {} in {}. You can undo what it has done, or let it be finished. Nothing "
             "is touched before you have seen what will be done.",
             time.substr(0, day), time.substr(std::min(day + 1, time.size()), 5), folder),
         .buttons = {"Undo…", "Finish…", "Later"}},
        [this, name = run.name](AlertAnswer answer) {
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
