# Completion of tvrn for bash.

# A word of the command line as tvrn gets it. No name that is asked for holds quotes of its own.
_tvrn_plain() {
    local word=$1
    word=${word//\\/}
    word=${word//\"/}
    printf '%s' "${word//\'/}"
}

_tvrn_actions() {
    tvrn actions --json 2>/dev/null | sed -n 's/^{"name":"\([^"]*\)".*/\1/p'
}

# The parameters of an action: a key, or behind a key its choices by number.
_tvrn_parameters() {
    tvrn actions "$1" 2>/dev/null | awk -v wanted="$2" '
        /^Parameters/ { inside = 1; next }
        /^$/ { inside = 0 }
        !inside { next }
        /^  [^ ]/ { key = $1; if (wanted == "") print key "="; next }
        key == wanted && $1 ~ /^[0-9]+:$/ { sub(":", "", $1); print $1 }'
}

# Offers the lines of standard input that begin like the current word, as they have to be typed.
_tvrn_offer() {
    local typed=$1 wanted line
    wanted=$(_tvrn_plain "$typed")
    while IFS= read -r line; do
        [[ $line == "$wanted"* ]] || continue
        # Within quotes bash puts in what it is given.
        [[ $typed == [\"\']* ]] || printf -v line '%q' "$line"
        COMPREPLY+=("$line")
    done
}

_tvrn() {
    local current=${COMP_WORDS[COMP_CWORD]} command=${COMP_WORDS[1]}
    local option key='' action='' i
    COMPREPLY=()
    if ((COMP_CWORD == 1)); then
        COMPREPLY=($(compgen -W 'preview rename actions tags presets --help --version' -- "$current"))
        return
    fi
    # What is behind a "=" belongs to the word before it, which bash has taken apart.
    i=COMP_CWORD
    if [[ $current == = ]]; then
        current='' key=${COMP_WORDS[i - 1]} option=${COMP_WORDS[i - 2]}
    elif [[ ${COMP_WORDS[i - 1]} == = ]] && ((i > 2)); then
        key=${COMP_WORDS[i - 2]} option=${COMP_WORDS[i - 3]}
    else
        option=${COMP_WORDS[i - 1]}
    fi
    for ((i = 2; i < COMP_CWORD; ++i)); do
        case ${COMP_WORDS[i]} in
        --) return ;;
        --action) action=$(_tvrn_plain "${COMP_WORDS[i + 1]}") ;;
        esac
    done
    case $command in
    preview | rename) ;;
    actions)
        if [[ $current == -* ]]; then
            COMPREPLY=($(compgen -W '--json --help' -- "$current"))
        else
            _tvrn_offer "$current" < <(_tvrn_actions)
        fi
        return
        ;;
    undo | redo | history)
        local known='--preview --json --replaced --interactive --quiet --help'
        [[ $command != history ]] || known='--json --forget --clear --help'
        if [[ $current == -* ]]; then
            COMPREPLY=($(compgen -W "$known" -- "$current"))
        else
            _tvrn_offer "$current" < <(tvrn history 2>/dev/null | cut -f 1)
        fi
        return
        ;;
    tags | presets)
        [[ $current != -* ]] || COMPREPLY=($(compgen -W '--json --help' -- "$current"))
        return
        ;;
    *) return ;;
    esac
    case $option in
    --action)
        _tvrn_offer "$current" < <(_tvrn_actions)
        return
        ;;
    --preset)
        _tvrn_offer "$current" < <(tvrn presets 2>/dev/null | cut -f 1)
        return
        ;;
    --set)
        compopt -o nospace 2>/dev/null
        [[ -z $action ]] || _tvrn_offer "$current" < <(_tvrn_parameters "$action" "$key")
        return
        ;;
    --setting)
        [[ -z $key ]] || return
        compopt -o nospace 2>/dev/null
        COMPREPLY=($(compgen -S = -W 'processFiles processFolders processSubfolders conflictResolutionScheme
            conflictResolutionDontChangeFirst conflictResolutionOrder1 conflictResolutionOrder2
            conflictResolutionOrder3 previewConflictResolution interactiveMode retrieveEXIFInformation
            accurateFolderSize automaticSorting copyFileComments preventAccidentalITunesLibraryDamage
            preventAccidentalIPhotoLibraryDamage renameMode keepHistory' -- "$current"))
        return
        ;;
    --store)
        COMPREPLY=($(compgen -W 'memory file' -- "$current"))
        return
        ;;
    --format)
        COMPREPLY=($(compgen -W '0 1 2' -- "$current"))
        return
        ;;
    esac
    [[ $current == -* ]] || return
    local options='--recipe --preset --action --set --setting --recursive --store --help'
    if [[ $command == preview ]]; then
        options+=' --format --json --affected --null'
    else
        options+=' --interactive --quiet --no-history --require-history'
    fi
    COMPREPLY=($(compgen -W "$options" -- "$current"))
} &&
    complete -o bashdefault -o default -F _tvrn tvrn
