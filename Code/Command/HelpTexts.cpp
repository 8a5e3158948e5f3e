#include "HelpTexts.h"

namespace tavrin::help {

const char* const overview = R"(tvrn renames many files and folders at once.

Usage: tvrn preview [RECIPE] [SETTINGS] [OUTPUT] PATH...
       tvrn rename  [RECIPE] [SETTINGS] [--interactive] [--quiet] PATH...
       tvrn actions [--json] [NAME]
       tvrn tags    [--json] FILE...
       tvrn presets [--json]
       tvrn --help | --version

  preview   show what a rename would do; touch nothing
  rename    do it
  actions   the actions that recipes are made of, and their parameters
  tags      what files say of themselves, as recipes can use it in names
  presets   the saved recipes

"tvrn preview --help" and so on tell the options. Exit status: 0 all well, 1 an
item failed, 2 bad usage and nothing touched, 3 stopped by the user.

Examples:
  touch IMG_1.JPG; tvrn preview --action "Make lowercase" IMG_1.JPG
  tvrn rename --action "Add to front" --set string=Sea_ IMG_1.JPG
  tvrn actions "Replace text"
)";

const char* const preview = R"(tvrn preview [RECIPE] [SETTINGS] [OUTPUT] PATH...
Shows what a rename would do, and touches nothing.
RECIPE, one of
  --recipe FILE        a preset, a list of steps, or a droplet
  --preset NAME        a saved preset, see "tvrn presets"
  --action NAME        a step, see "tvrn actions"; repeat it for more steps
    --set KEY=VALUE    a parameter of the step before it; repeatable
SETTINGS
  --setting KEY=VALUE  a global setting; repeatable
  --recursive          also what folders hold (processSubfolders=1)
  --store memory|file  where the list is kept; file for millions of items
OUTPUT, sorted by current name
  --format 0|1|2       0: name TAB new name, 1: new name, 2: path TAB new name
  --json               one object per line
  --affected           only what changes
  -0, --null           end lines with NUL
Examples:
  touch A.TXT B.TXT; tvrn preview --action "Make lowercase" A.TXT B.TXT
  tvrn preview --json --action "Add to end" --set string=_old --recursive .
  tvrn preview --affected --action "Make uppercase" --set fragmentSelection=2 .
)";

const char* const rename = R"(tvrn rename [RECIPE] [SETTINGS] [--interactive] [--quiet] PATH...
Renames the items, and says how many names it changed.
RECIPE, one of
  --recipe FILE        a preset, a list of steps, or a droplet
  --preset NAME        a saved preset, see "tvrn presets"
  --action NAME        a step, see "tvrn actions"; repeat it for more steps
    --set KEY=VALUE    a parameter of the step before it; repeatable
SETTINGS
  --setting KEY=VALUE  a global setting; repeatable
  --recursive          also what folders hold (processSubfolders=1)
  --store memory|file  where the list is kept; file for millions of items
OPTIONS
  --interactive        ask on the terminal before each rename and at problems
  --quiet              say nothing but what fails
Examples:
  touch A.TXT B.TXT; tvrn rename --action "Make lowercase" A.TXT B.TXT
  touch C D; tvrn rename --action "Add to front" --set string=new_ C D
  mkdir -p e/f; tvrn rename --recursive --action "Make uppercase" e
)";

const char* const actions = R"(tvrn actions [--json] [NAME]
Lists the actions by category, or tells what one action does: its parameters for
"--set" with their defaults and choices, and an example.

  --json    the same for programs; without a name, one object per line

Examples:
  tvrn actions
  tvrn actions "Insert at position"
  tvrn actions --json "Replace text"
)";

const char* const tags = R"(tvrn tags [--json] FILE...
Shows all tags that a pattern of "Rename from tag" and its siblings can hold,
each with its value for the file; "-" where the file has none. Dates and times
are local.

  --json    one object per line: "fullPath", and "tags" with texts or null

Examples:
  touch a.txt; tvrn tags a.txt
  tvrn tags --json a.txt
  tvrn tags a.txt | grep ModDate4DigitYear
)";

const char* const presets = R"(tvrn presets [--json]
Lists the saved presets: name, description, file.

  --json    one object per line

Examples:
  tvrn presets
  tvrn presets --json
  tvrn presets | sort
)";

} // namespace tavrin::help
