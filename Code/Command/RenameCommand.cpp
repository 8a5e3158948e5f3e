#include "RenameCommand.h"

#include "Session.h"

#include <fmt/format.h>

namespace tavrin {

std::string summaryOf(std::int32_t count) {
    if (count == 0)
        return "No file names were changed.\n";
    return count == 1 ? "1 file name was changed.\n" : fmt::format("{} file names were changed.\n", count);
}

ExitStatus runRenameCommand(const RenameOptions& options) {
    Session session(options.run);
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
    session.preview();
    if (!session.wasInterrupted())
        session.rename();
    if (!options.quiet && (session.hasRun() || session.wasInterrupted()))
        session.terminal().output().append(summaryOf(session.renamedCount()));
    return session.finish();
}

} // namespace tavrin
