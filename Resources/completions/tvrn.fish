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

set -l commands preview rename undo redo history actions tags presets
set -l run '__fish_seen_subcommand_from preview rename'
set -l preview '__fish_seen_subcommand_from preview'
set -l rename '__fish_seen_subcommand_from rename'
set -l back '__fish_seen_subcommand_from undo redo'
set -l history '__fish_seen_subcommand_from history'

complete -c tvrn -n "not __fish_seen_subcommand_from $commands" -f
complete -c tvrn -n "not __fish_seen_subcommand_from $commands" -a preview -d 'Show what a rename would do'
complete -c tvrn -n "not __fish_seen_subcommand_from $commands" -a rename -d 'Rename'
complete -c tvrn -n "not __fish_seen_subcommand_from $commands" -a undo -d 'Take a run back'
complete -c tvrn -n "not __fish_seen_subcommand_from $commands" -a redo -d 'Take an undo back or finish a run'
complete -c tvrn -n "not __fish_seen_subcommand_from $commands" -a history -d 'List past runs'
complete -c tvrn -n "not __fish_seen_subcommand_from $commands" -a actions -d 'List the actions'
complete -c tvrn -n "not __fish_seen_subcommand_from $commands" -a tags -d 'Show what files say of themselves'
complete -c tvrn -n "not __fish_seen_subcommand_from $commands" -a presets -d 'List the saved presets'
complete -c tvrn -n "not __fish_seen_subcommand_from $commands" -l version -d 'Show the version'
complete -c tvrn -s h -l help -d 'Show how it is used'

complete -c tvrn -n $run -l recipe -r -F -d 'A preset, steps or droplet in a file'
complete -c tvrn -n $run -l preset -x -a '(tvrn presets 2>/dev/null | cut -f 1,2)' -d 'A saved preset'
complete -c tvrn -n $run -l action -x -a '(__tvrn_actions)' -d 'A step'
complete -c tvrn -n $run -l set -x -a '(__tvrn_parameters)' -d 'A parameter of the step before it'
complete -c tvrn -n $run -l setting -x -a '(__tvrn_settings)' -d 'A global setting'
complete -c tvrn -n $run -l recursive -d 'Also what folders hold'
complete -c tvrn -n $run -l store -x -a 'memory file' -d 'Where the list is kept'
complete -c tvrn -n $preview -l format -x -a '0\t"name, new name" 1\t"new name" 2\t"path, new name"' -d 'What a line holds'
complete -c tvrn -n $preview -l affected -d 'Only what changes'
complete -c tvrn -n $preview -s 0 -l null -d 'End lines with NUL'
complete -c tvrn -n $rename -l interactive -d 'Ask on the terminal'
complete -c tvrn -n $rename -l quiet -d 'Tell failures alone'
complete -c tvrn -n $rename -l no-history -d 'Keep no record'
complete -c tvrn -n $rename -l require-history -d 'Only with a record'
complete -c tvrn -n $back -l preview -d 'Show what would be done'
complete -c tvrn -n $back -l replaced -d 'Also what lies in the place of an item'
complete -c tvrn -n $back -l interactive -d 'Ask on the terminal'
complete -c tvrn -n $back -l quiet -d 'Tell failures alone'
complete -c tvrn -n '__fish_seen_subcommand_from undo redo history' -f -a '(tvrn history 2>/dev/null | cut -f 1,2)'
complete -c tvrn -n $history -l forget -x -a '(tvrn history 2>/dev/null | cut -f 1,2)' -d 'Remove a record'
complete -c tvrn -n $history -l clear -d 'Remove all records'
complete -c tvrn -n '__fish_seen_subcommand_from preview undo redo history actions tags presets' -l json -d 'One object per line'
complete -c tvrn -n '__fish_seen_subcommand_from actions' -f -a '(__tvrn_actions)'
complete -c tvrn -n '__fish_seen_subcommand_from presets' -f
