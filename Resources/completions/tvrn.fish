# Completion of tvrn for fish.

function __tvrn_actions
    tvrn actions --json 2>/dev/null | string replace -rf '^{"name":"([^"]*)","label":"([^"]*)".*' '$1\t$2'
end

# Parameters of the last action before the cursor: keys, and with each the choices it has.
function __tvrn_parameters
    set -l words (commandline -opc)
    set -l action
    for i in (seq (count $words))
        if test "$words[$i]" = --action; and test $i -lt (count $words)
            set action $words[(math $i + 1)]
        end
    end
    test -n "$action"; or return
    tvrn actions $action 2>/dev/null | awk '
        /^Parameters/ { inside = 1; next }
        /^$/ { inside = 0 }
        !inside { next }
        /^  [^ ]/ { key = $1; $1 = ""; sub(/^ +/, ""); print key "=\t" $0; next }
        $1 ~ /^[0-9]+:$/ { number = $1; sub(":", "", number); $1 = ""; sub(/^ +/, ""); print key "=" number "\t" $0 }'
end

# What a recipe goes on with. A single offer stands beside itself with a blank: fish would close the quotes
# behind it at once, and most recipes go on. At the next Tab it does.
function __tvrn_recipe
    set -l token (commandline -ct | string collect)
    set -l typed (__tvrn_plain $token)
    set -l found (tvrn recipe --complete "$typed" 2>/dev/null)
    printf '%s\n' $found
    if test (count $found) -eq 1; and string match -qr '^["\']' -- $token
        set -l text (string split -f 1 \t -- $found)
        test "$text" = "$typed"; or printf '%s \t%s\n' $text 'and more'
    end
end

# A token as tvrn gets it; its last quote may be open.
function __tvrn_plain
    for end in '' \' '"'
        if set -l plain (string unescape -- $argv[1]$end)
            printf '%s\n' $plain
            return
        end
    end
end

# The command of the line; none where it begins with anything else.
function __tvrn_command
    set -l words (commandline -opc)
    contains -- "$words[2]" preview rename edit recipe undo redo history actions tags presets
    and echo $words[2]
end

# Whether the line has one of these commands, "none" among them.
function __tvrn_is
    set -l command (__tvrn_command)
    test -n "$command"; or set command none
    contains -- $command $argv
end

# Whether the current word is where a recipe stands: the first operand, unless an option has given it.
function __tvrn_at_recipe
    __tvrn_is none preview rename recipe; or return
    set -l words (commandline -opc)
    set -l first 2
    __tvrn_is none; or set first 3
    set -l takes '^(--(files-from|setting|include|exclude|type|depth|newer|older|on-conflict|store|color|format)|-[^-efpT]*T)$'
    set -l ended no
    set -l i $first
    while test $i -le (count $words)
        set -l word $words[$i]
        if test $ended = no; and test "$word" = --
            set ended yes
        else if test $ended = yes; or not string match -q -- '-?*' "$word"
            return 1
        else if string match -qr '^(--(recipe|preset|action)(=|$)|-[^-efpT]*[efp])' -- "$word"
            return 1
        else if string match -qr -- $takes "$word"
            set i (math $i + 1)
        end
        set i (math $i + 1)
    end
end

function __tvrn_settings
    printf '%s=\t%s\n' \
        processFiles 'files take part' \
        processFolders 'folders take part' \
        processSubfolders 'also what folders hold' \
        conflictResolutionScheme 'how equal names are made distinct' \
        conflictResolutionDontChangeFirst 'the first of equal names stays' \
        conflictResolutionOrder1 'the order of equal names' \
        conflictResolutionOrder2 'the order of equal names' \
        conflictResolutionOrder3 'the order of equal names' \
        previewConflictResolution 'the preview makes names distinct too' \
        interactiveMode 'ask before each step' \
        retrieveEXIFInformation 'read shooting dates' \
        accurateFolderSize 'sizes of folders with all they hold' \
        automaticSorting '0 keeps the order in which items are read' \
        copyFileComments 'comments go along' \
        preventAccidentalITunesLibraryDamage 'leave music libraries alone' \
        preventAccidentalIPhotoLibraryDamage 'leave photo libraries alone' \
        renameMode 'which route a rename tries first' \
        keepHistory 'a record to undo the run by'
end

set -l run '__tvrn_is none preview rename edit'
set -l source '__tvrn_is none preview rename edit recipe'
set -l preview '__tvrn_is none preview'
set -l rename '__tvrn_is none rename edit'
set -l back '__tvrn_is undo redo'
set -l first 'test (count (commandline -opc)) -eq 1'

complete -c tvrn -n $first -f
complete -c tvrn -n $first -a preview -d 'Show what a rename would do'
complete -c tvrn -n $first -a rename -d 'Rename'
complete -c tvrn -n $first -a edit -d 'Rename by a list of names'
complete -c tvrn -n $first -a recipe -d 'Print a recipe'
complete -c tvrn -n $first -a undo -d 'Take a run back'
complete -c tvrn -n $first -a redo -d 'Take an undo back or finish a run'
complete -c tvrn -n $first -a history -d 'List past runs'
complete -c tvrn -n $first -a actions -d 'List the actions'
complete -c tvrn -n $first -a tags -d 'Show what files say of themselves'
complete -c tvrn -n $first -a presets -d 'List the saved presets'
complete -c tvrn -n $first -s V -l version -d 'Show the version'
complete -c tvrn -s h -l help -d 'Show how it is used'
complete -c tvrn -n __tvrn_at_recipe -k -f -a '(__tvrn_recipe)'

complete -c tvrn -n $source -s e -x -k -a '(__tvrn_recipe)' -d 'A recipe'
complete -c tvrn -n $source -s f -l recipe -r -F -d 'A recipe, preset or droplet in a file'
complete -c tvrn -n $source -s p -l preset -x -a '(tvrn presets --names 2>/dev/null)' -d 'A saved preset'
complete -c tvrn -n $source -l action -x -a '(__tvrn_actions)' -d 'A step'
complete -c tvrn -n $source -l set -x -a '(__tvrn_parameters)' -d 'A parameter of the step before it'
complete -c tvrn -n '__tvrn_is none' -s x -l execute -d 'Rename'
complete -c tvrn -n $rename -s n -l dry-run -d 'Show only'
complete -c tvrn -n $run -l setting -x -a '(__tvrn_settings)' -d 'A global setting'
complete -c tvrn -n $run -s r -l recursive -d 'Also what folders hold'
complete -c tvrn -n "$run; or __tvrn_is tags" -s T -l files-from -r -F -d 'More paths, one a line'
complete -c tvrn -n "$run; or __tvrn_is tags" -s 0 -l null -d 'NUL ends paths and rows'
complete -c tvrn -n $run -l include -r -F -d 'Only what matches the glob'
complete -c tvrn -n $run -l exclude -r -F -d 'What does not match the glob'
complete -c tvrn -n $run -l type -x -a 'f\tfiles d\tfolders l\tlinks f,d f,l d,l f,d,l' -d 'The kinds that take part'
complete -c tvrn -n $run -l depth -x -d 'How deep folders are entered'
complete -c tvrn -n $run -l newer -r -F -d 'Changed after a date, an age or a file'
complete -c tvrn -n $run -l older -r -F -d 'Changed before a date, an age or a file'
complete -c tvrn -n $run -l hidden -d 'Also hidden items that are found'
complete -c tvrn -n $run -l links -d 'Links are items themselves'
complete -c tvrn -n $run -l on-conflict -x -a 'number skip stop' -d 'Where a name is wanted or taken'
complete -c tvrn -n $run -l store -x -a 'memory file' -d 'Where the list is kept'
complete -c tvrn -n $run -l color -x -a 'auto always never' -d 'When colours are used'
complete -c tvrn -n $preview -l format -x -a '0\t"name, new name" 1\t"new name" 2\t"path, new name"' -d 'What a line holds'
complete -c tvrn -n $preview -l affected -d 'Only what changes'
complete -c tvrn -n $preview -s a -l all -d 'On a terminal also what stays'
complete -c tvrn -n $preview -s c -l check -d 'Status 1 where a rename would fail'
complete -c tvrn -n "$rename; or $back" -s i -l interactive -d 'Ask on the terminal'
complete -c tvrn -n "$rename; or $back" -s q -l quiet -d 'Tell failures alone'
complete -c tvrn -n "$rename; or $back" -s v -l verbose -d 'Tell each item that is done'
complete -c tvrn -n $rename -l no-history -d 'Keep no record'
complete -c tvrn -n $rename -l require-history -d 'Only with a record'
complete -c tvrn -n '__tvrn_is recipe' -l lines -d 'One step a line'
complete -c tvrn -n '__tvrn_is recipe' -l plist -d 'As a property list'
complete -c tvrn -n '__tvrn_is recipe' -l complete -x -d 'What a text may go on with'
complete -c tvrn -n $back -l preview -d 'Show what would be done'
complete -c tvrn -n $back -l replaced -d 'Also what lies in the place of an item'
complete -c tvrn -n '__tvrn_is undo redo history' -f -a '(tvrn history 2>/dev/null | cut -f 1,2)'
complete -c tvrn -n '__tvrn_is history' -l forget -x -a '(tvrn history 2>/dev/null | cut -f 1,2)' -d 'Remove a record'
complete -c tvrn -n '__tvrn_is history' -l clear -d 'Remove all records'
complete -c tvrn -n 'not __tvrn_is rename edit' -s j -l json -d 'One object per line'
complete -c tvrn -n '__tvrn_is actions' -f -a '(__tvrn_actions)'
complete -c tvrn -n '__tvrn_is actions' -l try -r -F -d 'What it does to names'
complete -c tvrn -n '__tvrn_is presets' -l names -d 'The names alone'
complete -c tvrn -n '__tvrn_is presets' -f
