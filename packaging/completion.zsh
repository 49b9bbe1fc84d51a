#compdef ombrel
# Completes the options of ombrel in zsh, with what its help says about each.
local -a choices
if [[ $words[CURRENT-1] == --running ]]; then
    _message 'bundle identifier'
else
    # A line of the help that begins with more than two spaces continues the one before.
    choices=(${(f)"$(_call_program options $words[1] --help |
        sed -z 's/\n    *\([^ ]\)/ \1/g' | sed -n 's/^  \(--[^ ]*\)\( [A-Z][A-Z]*\)\{0,1\} */\1:/p')"})
    _describe -o option choices
fi
