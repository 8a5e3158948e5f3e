# Completion of tvrn for bash.

# Sets `plain` to a word as tvrn gets it, and `quote` to the quote in it that is still open.
_tvrn_read() {
    local rest=$1 c
    plain='' quote=''
    while [[ -n $rest ]]; do
        c=${rest:0:1}
        rest=${rest:1}
        case $quote$c in
        [\'\"]) quote=$c ;;
        \'\' | \"\") quote='' ;;
        \'*) plain+=$c ;;
        \\ | \"\\)
            [[ -z $quote || ${rest:0:1} == [\\\"\$\`] ]] || plain+=$c
            plain+=${rest:0:1}
            rest=${rest:1}
            ;;
        *) plain+=$c ;;
        esac
    done
}

# Offers a text as it has to be typed where the current word stands.
_tvrn_offer() {
    local text=$1
    case $quote in
    \') text=${text//\'/\'\\\'\'} ;;
    \")
        text=${text//\\/\\\\}
        text=${text//\"/\\\"}
        text=${text//\$/\\\$}
        text=${text//\`/\\\`}
        ;;
    *) printf -v text '%q' "$text" ;;
    esac
    COMPREPLY+=("$text")
}

# Offers the lines of standard input that begin like the current word.
_tvrn_offer_lines() {
    local line plain quote
    _tvrn_read "$typed"
    while IFS= read -r line; do
        [[ -z $line || $line != "$plain"* ]] || _tvrn_offer "$line"
    done
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

# What a recipe goes on with. Within quotes a single offer stands beside itself with a blank: readline would
# close the quotes behind it at once, and most recipes go on. At the next Tab it does.
_tvrn_recipe() {
    local plain quote text about texts=() abouts=() last i
    _tvrn_read "$typed"
    [[ -n $quote ]] && compopt -o nospace +o default +o bashdefault 2>/dev/null
    [[ -n $quote || $typed != *[\'\"]* ]] || return
    while IFS=$'\t' read -r text about; do
        texts+=("$text")
        abouts+=("$about")
    done < <(tvrn recipe --complete "$plain" 2>/dev/null)
    ((${#texts[@]})) || return
    # Where nothing of the word is typed yet and they begin in several ways, readline only lists them.
    last=${plain##* }
    if [[ -n $quote && -z $last && $COMP_TYPE == @(9|33|63|64) ]] && ((${#texts[@]} > 1)); then
        for text in "${texts[@]}"; do
            [[ ${text:${#plain}:1} == "${texts[0]:${#plain}:1}" ]] || last=several
        done
    fi
    if [[ $last == several && -z ${plain##* } ]]; then
        for i in "${!texts[@]}"; do
            printf -v text '%-12s %s' "${texts[i]:${#plain}}" "${abouts[i]:+(${abouts[i]})}"
            COMPREPLY+=("$text")
        done
        return
    fi
    for text in "${texts[@]}"; do
        _tvrn_offer "$text"
    done
    [[ -z $quote || ${#texts[@]} -gt 1 || $text == "$plain" ]] || _tvrn_offer "$text "
}

_tvrn_settings='processFiles processFolders processSubfolders conflictResolutionScheme
    conflictResolutionDontChangeFirst conflictResolutionOrder1 conflictResolutionOrder2
    conflictResolutionOrder3 previewConflictResolution interactiveMode retrieveEXIFInformation
    accurateFolderSize automaticSorting copyFileComments preventAccidentalITunesLibraryDamage
    preventAccidentalIPhotoLibraryDamage renameMode keepHistory'

# Offers the values of an option.
_tvrn_value() {
    local key=''
    [[ $1 != *=* ]] || key=${1%%=*}
    case $option in
    -e) _tvrn_recipe ;;
    -p | --preset) _tvrn_offer_lines < <(tvrn presets --names 2>/dev/null) ;;
    --action) _tvrn_offer_lines < <(_tvrn_actions) ;;
    --set)
        compopt -o nospace 2>/dev/null
        [[ -z $action ]] || _tvrn_offer_lines < <(_tvrn_parameters "$action" "$key")
        ;;
    --setting)
        [[ -z $key ]] || return
        compopt -o nospace 2>/dev/null
        COMPREPLY=($(compgen -S = -W "$_tvrn_settings" -- "$typed"))
        ;;
    --forget) _tvrn_offer_lines < <(tvrn history 2>/dev/null | cut -f 1) ;;
    --store) COMPREPLY=($(compgen -W 'memory file' -- "$typed")) ;;
    --format) COMPREPLY=($(compgen -W '0 1 2' -- "$typed")) ;;
    --type) COMPREPLY=($(compgen -W 'f d l f,d f,l d,l f,d,l' -- "$typed")) ;;
    --on-conflict) COMPREPLY=($(compgen -W 'number skip stop' -- "$typed")) ;;
    --color) COMPREPLY=($(compgen -W 'auto always never' -- "$typed")) ;;
    --complete | --depth) compopt +o default +o bashdefault 2>/dev/null ;;
    esac
}

# Offers the options of a command.
_tvrn_options() {
    local source='-e -f --recipe -p --preset --action --set'
    local run="$source --setting -r --recursive -T --files-from -0 --null --include --exclude --type --depth
        --newer --older --hidden --links --on-conflict --store --color"
    local preview='--format -j --json --affected -a --all -c --check'
    local rename='-i --interactive -q --quiet -v --verbose --no-history --require-history'
    local known
    case $1 in
    '') known="-x --execute -n --dry-run $run $preview $rename -V --version" ;;
    preview) known="$run $preview" ;;
    rename) known="-n --dry-run $run $rename" ;;
    edit) known="-n --dry-run $run $rename" ;;
    recipe) known="$source --lines --plist -j --json --complete" ;;
    history) known='-j --json --forget --clear' ;;
    undo | redo) known='--preview -j --json --replaced -i --interactive -q --quiet -v --verbose' ;;
    actions) known='-j --json --try' ;;
    presets) known='-j --json --names' ;;
    tags) known='-j --json -T --files-from -0 --null' ;;
    esac
    COMPREPLY=($(compgen -W "$known -h --help" -- "$typed"))
}

_tvrn() {
    local commands='preview rename edit recipe undo redo history actions tags presets'
    local typed=${COMP_WORDS[COMP_CWORD]} words=() command='' action='' source='' ended='' operands=0
    local word option plain quote last i joins=''
    COMPREPLY=()
    # What is behind a "=" belongs to the word before it, which bash has taken apart.
    for ((i = 1; i <= COMP_CWORD; ++i)); do
        word=${COMP_WORDS[i]}
        if ((${#words[@]})) && [[ $word == = || -n $joins ]]; then
            words[${#words[@]} - 1]+=$word
            joins=
            [[ $word != = ]] || joins=1
        else
            words+=("$word")
        fi
    done
    [[ $typed != = ]] || typed=
    last=$((${#words[@]} - 1))
    for ((i = 0; i < last; ++i)); do
        word=${words[i]}
        option=
        if [[ -n $ended || $word != -?* ]]; then
            if ((i == 0)) && [[ " $commands " == *" $word "* ]]; then
                command=$word
            else
                ((++operands))
            fi
            continue
        elif [[ $word == -- ]]; then
            ended=1
            continue
        elif [[ $word == --* ]]; then
            option=${word%%=*}
        elif [[ $word =~ ^-[^efpT]*([efpT])(.?) ]]; then
            option=-${BASH_REMATCH[1]}
        fi
        case $option in
        -e | -f | --recipe | -p | --preset | --action) source=1 ;;
        esac
        case $option in
        -[efpT] | --recipe | --preset | --action | --set | --setting | --files-from | --include | --exclude | \
            --type | --depth | --newer | --older | --on-conflict | --store | --color | --format | \
            --complete | --forget)
            [[ $option == --* && $word != *=* || $option == -? && -z ${BASH_REMATCH[2]} ]] || continue
            if ((++i == last)); then
                _tvrn_value "${words[i]}"
                return
            fi
            if [[ $option == --action ]]; then
                _tvrn_read "${words[i]}"
                action=$plain
            fi
            ;;
        esac
    done
    word=${words[last]}
    if [[ -z $ended && $word == --*=* ]]; then
        option=${word%%=*}
        _tvrn_value "${word#*=}"
    elif [[ -z $ended && $word == -* ]]; then
        _tvrn_options "$command"
    else
        case $command in
        '' | preview | rename | recipe)
            ((last)) || COMPREPLY=($(compgen -W "$commands" -- "$typed"))
            [[ -n $source ]] || ((operands)) || _tvrn_recipe
            ;;
        actions) ((operands)) || _tvrn_offer_lines < <(_tvrn_actions) ;;
        undo | redo | history) _tvrn_offer_lines < <(tvrn history 2>/dev/null | cut -f 1) ;;
        esac
    fi
} &&
    complete -o bashdefault -o default -F _tvrn tvrn
