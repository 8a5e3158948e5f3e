#include "HelpTexts.h"

namespace tavrin::help {

namespace {

/// Of preview, rename and edit.
constexpr const char* runOptions =
    R"(  -e TEXT, -f, --recipe FILE   the recipe; a file of text, a preset, a droplet
  -p, --preset NAME            a saved preset, see "tvrn presets"
  --action NAME [--set KEY=VALUE]...  a step in the long form; repeatable
  -r, --recursive      also what folders hold; --depth N, --hidden: how much
  -T, --files-from F   more paths, from F or -, one a line; -0: a NUL ends each
  --include, --exclude GLOB, --type f,d,l, --newer, --older WHEN, --links
  --on-conflict RULE   number, skip or stop, where a name is wanted or taken
  --setting KEY=VALUE  a global setting; repeatable
  --store memory|file  where the list is kept; file for millions of items
)";

/// Of undo and redo.
constexpr const char* takeBackOptions = R"(  --preview          show what would be done; touch nothing
  -j, --json         with --preview: one object per line
  --replaced         also what lies in the place of an item that is gone, as
                     where an editor has saved by replacing
  -i, --interactive  ask on the terminal before each rename and at problems
  -q, --quiet        say nothing but what fails
  -v, --verbose      tell each item that is done
)";

} // namespace

const std::string overview = R"(tvrn renames many files and folders at once.

Usage: tvrn [OPTIONS] RECIPE PATH...       show what would happen; touch nothing
       tvrn -x [OPTIONS] RECIPE PATH...    do it
       tvrn COMMAND [OPTIONS] ...

  preview   the same as no command; rename: the same as -x, --execute
  edit      rename by a list of names that you edit
  recipe    print a recipe as one line of text, or in another form
  undo      take a run back; redo takes that back, or finishes a run
  history   past runs, and where their items are now
  actions   the actions that recipes are made of, and their words
  tags      what files say of themselves, as recipes can use it in names
  presets   the saved recipes

A recipe is steps with "|" between them: a verb, its texts, further words.
"tvrn preview --help" and so on tell the options, "man tvrn" all words.
Of all commands: -h, --help, --color auto|always|never; of tvrn: -V, --version.
Examples:
  touch IMG_1.JPG IMG_2.JPG; tvrn 'replace IMG_ "Lofoten " | lower ext' *.JPG
  touch "a b"; tvrn -x 's/ /_/g' *
  tvrn actions replace
)";

const std::string preview = std::string(R"(tvrn preview [OPTIONS] RECIPE PATH...
Shows what a rename would do, and touches nothing; so does tvrn by itself.
RECIPE is a text ("man tvrn" tells its words), or else one of
)") + runOptions + R"(Output, sorted by current name; on a terminal in two columns
  --format 0|1|2       0: name TAB new name, 1: new name, 2: path TAB new name
  -j, --json           one object per line, with the problems
  --affected           only what changes; -a, --all: on a terminal also the rest
  -0, --null           end lines with NUL; --color auto|always|never
  -c, --check          status 1 where a rename would fail
Examples:
  touch A.TXT B.TXT; tvrn preview lower A.TXT B.TXT
  tvrn preview --json --recursive 'add _old end' .
  tvrn preview --affected 'upper ext | number end digits=3' .
)";

const std::string rename = std::string(R"(tvrn rename [OPTIONS] RECIPE PATH...
Renames the items, and says how many names it changed; so does tvrn -x.
RECIPE is a text ("man tvrn" tells its words), or else one of
)") + runOptions + R"(  -n, --dry-run        show only, as preview with its options
  -i, --interactive    ask on the terminal before each rename and at problems
  -q, --quiet          say nothing but what fails
  -v, --verbose        tell each item that is done: old name TAB new name
  --no-history         keep no record to undo it by (keepHistory=0)
  --require-history    don't begin where no record can be written
Examples:
  touch A.TXT B.TXT; tvrn rename lower A.TXT B.TXT
  touch C D; tvrn rename 'prefix new_ | number end' C D
  mkdir -p e/f; tvrn rename --recursive --action "Make uppercase" e
)";

const std::string edit = std::string(R"(tvrn edit [OPTIONS] PATH...
Opens the names in $VISUAL or $EDITOR and renames the items as they are left
there. Where a line is wrong nothing is renamed, and the file is opened again
with the reasons. Nothing is ever replaced or numbered.
A recipe gives the names to begin with:
)") + runOptions + R"(  -n, --dry-run        show the result; touch nothing
  and those of "tvrn rename"
Examples:
  touch A.TXT B.TXT; EDITOR="sed -i s/TXT/txt/" tvrn edit A.TXT B.TXT
  touch C D; EDITOR="sed -i s/C/new/" tvrn edit --dry-run C D
  touch E; EDITOR=true tvrn edit -e lower E
)";

const std::string recipe = R"(tvrn recipe [--lines | --plist | --json] RECIPE
Prints a recipe in its canonical form, on one line. RECIPE is a text, or one of
  -e TEXT, -f, --recipe FILE   the recipe; a file of text, a preset, a droplet
  -p, --preset NAME            a saved preset, see "tvrn presets"
  --action NAME [--set KEY=VALUE]...  a step in the long form; repeatable

  --lines          one step a line
  --plist          a property list, as --recipe reads it
  -j, --json       "canonical" and "steps", or the place of the mistake
  --complete TEXT  what TEXT may go on with, one a line

Examples:
  tvrn recipe 'replace IMG_ "Trip "; lower ext'
  tvrn recipe --action "Add to end" --set string=_old
  tvrn recipe --plist 'number end digits=3' > count.plist
)";

const std::string history = R"(tvrn history [--json] [RUN]
tvrn history --forget RUN | --clear
Lists the past runs, newest first: run, time, who, what, state, items, folder.
With RUN its items: folder, old name, new name, where it is now, name now.
RUN is the name of a run, or an end of it that no other has.

  -j, --json    one object per line
  --forget RUN  remove the record of a run; it can't be undone any more
  --clear       remove all, but those of runs that were interrupted

Examples:
  tvrn history
  tvrn history --json
  tvrn history | head -n 1
)";

const std::string undo = std::string(R"(tvrn undo [OPTIONS] [RUN]
Gives the items of a run their former names again, wherever that is possible
without touching anything else. Without RUN it is the newest that is not undone
yet; RUN is as in "tvrn history". An undo is a run itself: redo takes it back.

)") + takeBackOptions + R"(
Examples:
  touch A.TXT; tvrn -x lower A.TXT; tvrn undo
  touch B; tvrn -x lower B; tvrn undo --preview
  touch C; tvrn -x lower C; tvrn undo --quiet
)";

const std::string redo = std::string(R"(tvrn redo [OPTIONS] [RUN]
Takes an undo back. Of a run that was stopped or interrupted it does what is
left of its plan. Without RUN it is the newest that can be redone; RUN is as in
"tvrn history".

)") + takeBackOptions + R"(
Examples:
  touch A; tvrn -x lower A; tvrn undo; tvrn redo
  touch B; tvrn -x lower B; tvrn undo; tvrn redo --verbose
  touch C; tvrn -x lower C; tvrn undo; tvrn redo --preview
)";

const std::string actions = R"(tvrn actions [--json] [ACTION] [--try NAME...]
Lists the actions by category, each with its verb, or tells what one does: how
recipes have it, its parameters with their defaults and choices, and examples.
ACTION is a verb ("add", "add start"), a label, or a name of a stored list.

  -j, --json     the same for programs; one object per line
  --try NAME...  what the examples make of a name, without any file

Examples:
  tvrn actions replace
  tvrn actions "Remove accents"
  tvrn actions title --try "my holiday.JPG"
)";

const std::string tags = R"(tvrn tags [--json] FILE...
Shows all tags that a pattern of "Rename from tag" and its siblings can hold,
each with its value for the file; "-" where the file has none. Dates and times
are local.

  -j, --json    one object per line: "fullPath", and "tags" with texts or null
  -T, --files-from F  more paths, from F or -, one a line; -0: a NUL ends each

Examples:
  touch a.txt; tvrn tags a.txt
  tvrn tags --json a.txt
  tvrn tags a.txt | grep ModDate4DigitYear
)";

const std::string presets = R"(tvrn presets [--json | --names]
Lists the saved presets: name, description, file.

  -j, --json    one object per line
  --names       only the names, one a line; those with control characters in
                them are left out

Examples:
  tvrn presets
  tvrn presets --json
  tvrn presets | sort
)";

} // namespace tavrin::help
