# shellcheck shell=bash
# Completion of vellumark for bash: a book, then -V or -L.
_vellumark() {
    local word=${COMP_WORDS[COMP_CWORD]}
    if [ "$COMP_CWORD" -gt 1 ]; then
        mapfile -t COMPREPLY < <(compgen -W '-V -L' -- "$word")
        return
    fi
    compopt -o filenames
    mapfile -t COMPREPLY < <(
        compgen -W '--version --help' -- "$word"
        compgen -d -- "$word"
        compgen -f -X '!*.[fF][bB]2' -- "$word"
    )
}
complete -F _vellumark vellumark
