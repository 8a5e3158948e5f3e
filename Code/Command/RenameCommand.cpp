#include "RenameCommand.h"

#include "Session.h"

#include <fmt/format.h>

namespace tavrin {

namespace {

std::string summary(std::int32_t count) {
    if (count == 0)
        return "No file names were changed.\n";
    return count == 1 ? "1 file name was changed.\n" : fmt::format("{} file names were changed.\n", count);
}

} // namespace

ExitStatus runRenameCommand(const RenameOptions& options) {
    Session session(options.run);
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
        session.terminal().output().append(summary(session.renamedCount()));
    return session.finish();
}

} // namespace tavrin
