# Completion of trk for bash. It asks the program's own help, so that it knows what that knows.

_trk() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command=${COMP_WORDS[0]} words
    if ((COMP_CWORD == 1)); then
        words=$("$command" --help 2>/dev/null |
            sed -n -e '/^Subcommands:/,/^$/s/^  \([a-z][a-z]*\)  *.*/\1/p' -e 's/^  .*\(--[a-z-]*\).*/\1/p')
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
        return
    fi
    case $previous in
    --format)
        # The alternatives stand in the option's help in braces.
        words=$("$command" "${COMP_WORDS[1]}" --help 2>/dev/null |
            sed -n 's/^  --format.*{\([a-z,]*\)}.*/\1/p' | tr ',' ' ')
        [ -z "$words" ] || mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
        return
        ;;
    esac
    if [[ $current == -* ]]; then
        words=$("$command" "${COMP_WORDS[1]}" --help 2>/dev/null | grep -o -- '--[a-z][a-z-]*' | sort -u)
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
    else
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
    fi
}

complete -F _trk trk
