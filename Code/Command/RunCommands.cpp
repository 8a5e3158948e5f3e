#include "ColumnPrinter.h"
#include "Commands.h"
#include "RowPrinter.h"
#include "Session.h"
#include "engine/naming/NameProblems.h"
#include "store/contexts/StoreContext.h"

#include <fmt/format.h>

#include <mutex>

namespace tavrin {

namespace {

/// One line each, by current name like the rows.
void tellProblems(StoreContext& context, const Predicate& shown, Terminal& terminal) {
    const Predicate withProblem = shown.with(Predicate::isTrue(NodeKey::problem));
    for (const RowId row : context.fetch({FetchEntity::file, withProblem, {{NodeKey::name}}, 0}))
        terminal.complain(fmt::format("{}: {}: {}", problemTitle(context, row), reasonInFull(context, row),
                                      context.fullPath(row)));
}

} // namespace

void printPreview(const PreviewOptions& options, Session& session) {
    StoreContext& context = session.context();
    const std::lock_guard lock(context.mutex());
    if (options.check && problemCount(context, session.filter()) > 0)
        session.noteFailure();
    Terminal& terminal = session.terminal();
    if (options.isForPrograms || !terminal.outputIsTerminal()) {
        RowPrinter(options, terminal.output(), terminal.outputIsTerminal()).print(context, session.filter());
        if (!options.json)
            tellProblems(context, session.filter(), terminal);
        return;
    }
    const ColumnPrinter::Options form{terminal.columns(), terminal.paints(options.color), options.all};
    ColumnPrinter(form, terminal.output()).print(context, session.filter());
}

ExitStatus runPreviewCommand(const PreviewOptions& options) {
    Session session(options.run);
    session.preview();
    if (!session.wasInterrupted())
        printPreview(options, session);
    return session.finish();
}

std::string summaryOf(std::int32_t count) {
    if (count == 0)
        return "No file names were changed.\n";
    return count == 1 ? "1 file name was changed.\n" : fmt::format("{} file names were changed.\n", count);
}

void prepare(Session& session, const RenameOptions& options) {
    if (options.noHistory)
        session.keepHistory(false);
    if (options.requireHistory)
        session.requireHistory();
    if (options.interactive)
        session.beInteractive();
    else
        session.beInteractiveIfSet();
    if (options.quiet)
        session.showNoProgress();
    if (options.verbose)
        session.printRenames(options.run.selection.null);
}

ExitStatus rename(Session& session, const RenameOptions& options) {
    const bool hasNoItems = session.hasNoItems();
    if (!session.wasInterrupted() && !hasNoItems)
        session.rename();
    if (!options.quiet && (session.hasRun() || session.wasInterrupted() || hasNoItems))
        session.terminal().output().append(summaryOf(session.renamedCount()));
    return session.finish();
}

ExitStatus runRenameCommand(const RenameOptions& options) {
    Session session(options.run);
    prepare(session, options);
    session.showNoProblems();
    session.preview();
    return rename(session, options);
}

} // namespace tavrin
