# Completes the options of ombrel in bash: those that its help lists.
_ombrel() {
    local word=${COMP_LINE:0:COMP_POINT}
    word=${word##* }
    COMPREPLY=()
    [ "$3" != --running ] || return # an identifier follows
    mapfile -t COMPREPLY < <(compgen -W "$("$1" --help 2>/dev/null | sed -n 's/^  \(--[^ ]*\).*/\1/p')" -- "$word")
    # Where "=" separates words, bash replaces only what follows it.
    if [[ $word == *=* && $COMP_WORDBREAKS == *=* ]]; then COMPREPLY=("${COMPREPLY[@]#"${word%%=*}="}"); fi
}
complete -F _ombrel ombrel
