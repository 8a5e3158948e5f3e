#pragma once

#include "CommandLine.h"
#include "ExitStatus.h"
#include "documents/RecipeFile.h"

#include <array>
#include <string>

namespace tavrin {

class BaseAction;
class TVRNGlobalPreferencesPseudoAction;

class Terminal;

/// A recipe as text has a mistake.
class RecipeTextError : public UsageError {
  public:
    /// `where` is the path of the text, or what else it is.
    RecipeTextError(const std::string& where, RecipeText::Remark mistake);
    [[nodiscard]] const RecipeText::Remark& remark() const { return what_; }

  private:
    RecipeText::Remark what_;
};

/// Two lines that show the place of a remark on a terminal of so many columns.
[[nodiscard]] std::array<std::string, 2> excerptOf(const RecipeText::Remark& remark, std::size_t columns);

/// The chain that the command line asks for, checked in full. Throws UsageError, and RecipeTextError.
[[nodiscard]] Recipe loadRecipe(const RecipeSource& source,
                                RecipeFile::Accept accept = RecipeFile::Accept::runnable);

/// What is no mistake, but probably not meant.
void tellNotes(const Recipe& recipe, Terminal& terminal);

/// Stores the given settings over those of the recipe. Throws UsageError before anything is stored.
void applySettings(const Recipe& recipe, const std::vector<KeyAndValue>& given,
                   TVRNGlobalPreferencesPseudoAction& settings);

} // namespace tavrin
