#compdef inkora
# Completes inkora in zsh, with the words that inkora itself tells.

_inkora() {
    local line word before found=1
    local -a closed open
    for line in "${(@f)$(${~words[1]} --complete "${(@Q)words[2,CURRENT-1]}" "${(Q)PREFIX}" 2>/dev/null)}"; do
        word=${line%%$'\t'*}
        case $line in
            $'\t'*)
                before=${line#$'\t'}
                compset -P "${(b)before}"
                _files && found=0 ;;
            *:$'\t'*) open+=("${word//:/\\:}:${line#*$'\t'}") ;;
            *$'\t'*) closed+=("${word//:/\\:}:${line#*$'\t'}") ;;
        esac
    done
    _describe -V word closed -- open -S '' && found=0
    return found
}

_inkora "$@"
