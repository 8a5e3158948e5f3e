#include "shell/commands/UndoCommands.h"

#include "engine/history/JournalPlaces.h"
#include "engine/pipeline/RenameEngine.h"
#include "shell/asking/ConfirmationFlow.h"
#include "shell/asking/FrontEnd.h"
#include "shell/preview/PreviewControl.h"

#include <algorithm>
#include <cctype>

namespace tavrin {

namespace {

/// Of records that the main thread may read from end to end.
constexpr std::uint64_t mostBytesAtOnce = 256U << 10;
constexpr std::size_t mostReasons = 3;

std::string asSentence(std::string part) {
    part.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(part.front())));
    return part.ends_with('.') ? part : part + ".";
}

bool isToFinish(const ChosenRun& chosen) {
    const PastRun& run = chosen.run;
    return chosen.toNewNames && !run.isUndone && (!run.end || run.end->wasStopped);
}

UndoQuestion questionOf(const ChosenRun& chosen, const TakeBackResult& found, bool isOwn) {
    UndoQuestion question{.what = chosen.what,
                          .finishes = isToFinish(chosen),
                          .isOwn = isOwn,
                          .run = chosen.run.name,
                          .who = chosen.run.heading.who,
                          .began = chosen.run.heading.began(),
                          .folder = chosen.run.folder};
    question.possible = static_cast<std::size_t>(found.planned);
    question.total = question.possible + static_cast<std::size_t>(found.failed);
    const std::size_t shown = std::min(mostReasons, found.errors.size());
    question.reasons.assign(found.errors.begin(), found.errors.begin() + static_cast<std::ptrdiff_t>(shown));
    return question;
}

/// What the disk tells of a run that was cut off.
InterruptedRun whatIsLeftOf(const PastRun& run) {
    InterruptedRun left{.run = run.name, .what = run.heading.what, .began = run.heading.began()};
    RunRecordReader record(run.path);
    record.examine();
    left.folder = record.commonFolder();
    left.total = record.itemCount();
    JournalPlaces(record).visit(JournalPlaces::Which::all, [&](const PlacedItem& placed) {
        left.changed += placed.place == ItemPlace::done ? 1 : 0;
        left.withTemporaryName += placed.place == ItemPlace::standIn ? 1 : 0;
    });
    return left;
}

} // namespace

// ---- what is next

UndoCommands::Folders UndoCommands::foldersOf(const PastRun& run) {
    RunRecordReader record(run.path);
    record.examine();
    return {record.commonFolder(), record.folders().size()};
}

std::optional<UndoCommands::Next> UndoCommands::next(RunKind what, std::function<void()> known) {
    const auto chosen = RunHistory(services.engine.historyPlace().folder).outlook(what);
    if (!chosen)
        return std::nullopt;
    const PastRun& run = chosen->run;
    Next next{.finishes = isToFinish(*chosen), .isOfUndo = !run.isForward()};
    if (!run.problem.empty() || run.isUnderWay)
        return next;
    if (run.end && !next.finishes)
        next.count = run.end->changed;
    const auto [folders, isNew] = knownFolders.try_emplace(run.name);
    if (isNew && run.size <= mostBytesAtOnce)
        folders->second = foldersOf(run);
    else if (isNew)
        services.engine.readHistory([this, run, known = std::move(known)](const RunHistory&) {
            return [this, name = run.name, found = foldersOf(run), known] {
                knownFolders[name] = found;
                known();
            };
        });
    next.folder = folders->second.common;
    next.folderCount = folders->second.count;
    return next;
}

// ---- taking it up

void UndoCommands::takeUp(RunKind what, const std::string& run) {
    if (!questionInHand.expired() || units.confirmation.currentlyShowingProgressTab())
        return;
    const auto question = std::make_shared<char>();
    questionInHand = question;
    services.engine.readHistory([=, this](const RunHistory& history) {
        auto found = history.choose(what, run);
        if (auto* chosen = std::get_if<ChosenRun>(&found))
            chosen->run.folder = foldersOf(chosen->run).common;
        return [=, this] {
            if (const auto* chosen = std::get_if<ChosenRun>(&found)) {
                begin(*chosen, question);
                return;
            }
            questionInHand.reset();
            const bool isIdle = !units.confirmation.currentlyShowingProgressTab();
            if (isIdle && !units.confirmation.endWithoutReport())
                return;
            tell(what == RunKind::undo ? "Nothing was undone." : "Nothing was redone.",
                 asSentence(std::get<std::string>(found)));
        };
    });
}

void UndoCommands::begin(const ChosenRun& chosen, const std::shared_ptr<void>& question) {
    const bool isOwn = services.engine.hasRecorded(chosen.run.name);
    services.engine.processTakeBack(
        services.progress,
        {.chosen = chosen,
         .extent = isOwn ? TakeBackRequest::Extent::allOrNothing : TakeBackRequest::Extent::look,
         .isOnShow = true},
        [=, this](EngineHost&, const TakeBackResult& result) {
            if (!result.wasDone)
                return looked(chosen, result, question);
            questionInHand.reset();
            ended(result);
        });
}

void UndoCommands::looked(const ChosenRun& chosen, const TakeBackResult& found,
                          const std::shared_ptr<void>& question) {
    // The look has spoken in the place of the list's counts.
    if (!units.preview.isPreviewPending()) {
        services.frontEnd.selectPreviewTab(PreviewTab::status);
        units.preview.showStats();
    }
    if (!units.confirmation.endWithoutReport() || services.engine.isStopRequested()) {
        questionInHand.reset();
        return;
    }
    const bool isOwn = services.engine.hasRecorded(chosen.run.name);
    services.frontEnd.askToUndo(questionOf(chosen, found, isOwn),
                                [this, chosen, question](UndoAnswer answer) {
                                    questionInHand.reset();
                                    if (answer == UndoAnswer::go)
                                        perform(chosen);
                                    else if (answer == UndoAnswer::showInHistory)
                                        services.frontEnd.showHistory(chosen.run.name);
                                });
}

void UndoCommands::perform(const ChosenRun& chosen) {
    services.engine.processTakeBack(services.progress, {.chosen = chosen, .isOnShow = true},
                                    [this](EngineHost&, const TakeBackResult& result) { ended(result); });
}

void UndoCommands::ended(const TakeBackResult& result) {
    services.engine.rereadMovedAtNextPreview();
    units.preview.initiateDelayedPreviewUpdate();
    units.confirmation.tellEndOfTakeBack(result);
}

// ---- a run that was cut off

void UndoCommands::tellInterruptedRun() {
    services.engine.readHistory([this](const RunHistory& history) -> std::function<void()> {
        const auto run = history.interruptedRun();
        if (!run)
            return {};
        return [this, left = whatIsLeftOf(*run)] {
            services.frontEnd.tellInterruptedRun(left, [this, left](InterruptedRunAnswer answer) {
                const bool isUndo = left.what == RunKind::undo; // which goes on as an undo
                if (answer == InterruptedRunAnswer::show)
                    services.frontEnd.showHistory(left.run);
                else if ((answer == InterruptedRunAnswer::finish) == isUndo)
                    undoRun(left.run);
                else
                    redoRun(left.run);
            });
        };
    });
}

void UndoCommands::tell(const std::string& title, const std::string& text) {
    services.frontEnd.showAlert({.kind = AlertKind::nothingToTakeBack,
                                 .style = AlertStyle::informational,
                                 .title = title,
                                 .text = text,
                                 .buttons = {"OK"}},
                                [](AlertAnswer) {});
}

} // namespace tavrin
