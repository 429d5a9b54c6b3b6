#include "cli/completion_scripts.h"

namespace velmo::cli {

namespace {

constexpr const char* bash =
    R"script(# Completion of velmo in bash. To be sourced, or put into
# /usr/share/bash-completion/completions/velmo.
_velmo() {
    local word rest
    COMPREPLY=()
    while IFS=$'\t' read -r word rest; do
        COMPREPLY+=("$(printf '%q' "$word")")
    done < <("$1" --timeout 1000 complete -- "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
}
complete -o default -o nosort -F _velmo velmo
)script";

constexpr const char* zsh = R"script(#compdef velmo
# Completion of velmo in zsh. To be put into a folder of $fpath as _velmo.
_velmo() {
    local line
    local -a found
    for line in "${(@f)$(${words[1]} --timeout 1000 complete -- \
            "${(@Q)words[2,CURRENT]}" 2>/dev/null)}"; do
        [[ -n $line ]] && found+=("${${line%%$'\t'*}//:/\\:}:${line#*$'\t'}")
    done
    if (( $#found )); then
        _describe -V velmo found
    else
        _files
    fi
}
if [[ $funcstack[1] = _velmo ]]; then
    _velmo "$@"
else
    compdef _velmo velmo
fi
)script";

constexpr const char* fish = R"script(# Completion of velmo in fish. To be put into
# ~/.config/fish/completions/velmo.fish.
function __velmo_complete
    set -l words (commandline -opc)
    set -l begun (commandline -ct)
    set -l found ($words[1] --timeout 1000 complete -- $words[2..-1] "$begun" 2>/dev/null)
    if set -q found[1]
        printf '%s\n' $found
    else
        __fish_complete_path "$begun"
    end
end
complete -c velmo -f -k -a '(__velmo_complete)'
)script";

} // namespace

std::string completion_script(const std::string& shell)
{
    return shell == "bash" ? bash : shell == "zsh" ? zsh : fish;
}

} // namespace velmo::cli
