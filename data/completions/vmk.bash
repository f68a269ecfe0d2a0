# shellcheck shell=bash
# Completion of vmk for bash. Commands and options come from the help of the installed program.
_vmk() {
    local word=${COMP_WORDS[COMP_CWORD]} command=${COMP_WORDS[1]}
    local words
    if [ "$COMP_CWORD" -eq 1 ]; then
        words=$(vmk --help 2>/dev/null | sed -nE 's/^  ([a-z]+)  +.*/\1/p')
        words+=' --help --version'
    elif [[ $word == -* ]]; then
        words=$(vmk "$command" --help 2>/dev/null | grep -oE -- '(^|[^-[:alnum:]])--[a-z][-a-z]*' | grep -oE -- '--[-a-z]+' | sort -u)
        words+=' --help'
    else
        compopt -o default -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        return
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -F _vmk vmk
