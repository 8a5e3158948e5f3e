#pragma once

#include "CommandLine.h"
#include "ExitStatus.h"

#include <cstdint>
#include <string>

// What main runs, a function for each command. All throw UsageError.

namespace tavrin {

class Session;

/// `tvrn preview`: prints what a rename would do, and touches nothing.
ExitStatus runPreviewCommand(const PreviewOptions& options);

/// `tvrn rename`: renames, and says how many names it changed.
ExitStatus runRenameCommand(const RenameOptions& options);

/// `tvrn history`: lists past runs or the items of one, or forgets some.
ExitStatus runHistoryCommand(const HistoryOptions& options);

/// `tvrn undo` and `tvrn redo`.
ExitStatus runTakeBackCommand(const TakeBackOptions& options);

/// `tvrn recipe`: prints a recipe in its canonical form, or in another.
ExitStatus runRecipeCommand(const RecipeTextOptions& options);

/// `tvrn actions`: tells the catalogue, or one action of it, on standard output.
ExitStatus runActionsCommand(const ActionsOptions& options);

/// `tvrn tags`: tells all tags of the tag library with their values for each file on standard output; nothing
/// when there is a file that cannot be read.
ExitStatus runTagsCommand(const TagsOptions& options);

/// `tvrn presets`: lists the saved presets on standard output.
ExitStatus runPresetsCommand(const PresetsOptions& options);

/// `tvrn edit`: renames by a list of names that the user edits.
ExitStatus runEditCommand(const EditOptions& options);

// What commands share.

/// Prints the rows of a session that has been previewed.
void printPreview(const PreviewOptions& options, Session& session);

/// Has the session's rename go as the options say; before the preview.
void prepare(Session& session, const RenameOptions& options);

/// Renames what has been previewed, says how many names that changed, and ends the session.
ExitStatus rename(Session& session, const RenameOptions& options);

/// How many names were changed, as a line.
[[nodiscard]] std::string summaryOf(std::int32_t count);

} // namespace tavrin
