
#include "Commands.h"
#include "RowPrinter.h"
#include "Session.h"
#include "store/contexts/StoreContext.h"

namespace tavrin {

namespace {

void print(const TakeBackResult& result, const TakeBackOptions& options, Terminal& terminal) {
    StoreContext context(*result.store, StoreContext::MergePolicy::storeWins);
    PreviewOptions form;
    form.format = 2;
    form.json = options.json;
    RowPrinter(form, terminal.output(), terminal.outputIsTerminal())
        .print(context, Predicate::isTrue(NodeKey::diff));
}

} // namespace

ExitStatus runTakeBackCommand(const TakeBackOptions& options) {
    Session session;
    if (options.interactive)
        session.beInteractive();
    if (options.quiet)
        session.showNoProgress();
    if (options.verbose)
        session.printRenames(false);
    const auto chosen = session.history().choose(options.isRedo ? RunKind::redo : RunKind::undo, options.run);
    if (const auto* reason = std::get_if<std::string>(&chosen))
        throw UsageError(*reason);
    const TakeBackResult result = session.takeBack(
        {.chosen = std::get<ChosenRun>(chosen),
         .extent = options.preview ? TakeBackRequest::Extent::look : TakeBackRequest::Extent::whatCan,
         .takesReplaced = options.replaced,
         .asks = options.interactive});
    if (options.preview)
        print(result, options, session.terminal());
    else if (!options.quiet)
        session.terminal().output().append(summaryOf(result.changed));
    return session.finish();
}

} // namespace tavrin
