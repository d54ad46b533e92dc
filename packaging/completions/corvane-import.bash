# Completion of corvane-import for bash.

_corvane_import() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    COMPREPLY=()
    # With "=" as a break between words, "--timeout=60" comes as three of them.
    [[ $previous != --timeout && $previous != = && $current != = ]] || return 0
    mapfile -t COMPREPLY < <(compgen -W '--lite --timeout --help --version' -- "$current")
}

complete -F _corvane_import corvane-import
