# Completion of tavrin for bash.

_tavrin() {
    local current=${COMP_WORDS[COMP_CWORD]} i
    COMPREPLY=()
    for ((i = 1; i < COMP_CWORD; ++i)); do
        [[ ${COMP_WORDS[i]} != -- ]] || return
    done
    case ${COMP_WORDS[COMP_CWORD - 1]} in
    --droplet)
        compopt -o filenames 2>/dev/null
        local IFS=$'\n'
        COMPREPLY=($(compgen -d -- "$current"))
        return
        ;;
    esac
    [[ $current != -* ]] || COMPREPLY=($(compgen -W '--droplet --help --version' -- "$current"))
} &&
    complete -o bashdefault -o default -F _tavrin tavrin
