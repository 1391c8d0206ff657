# shellcheck shell=bash
# Completes inkora in bash, with the words that inkora itself tells.

_inkora() {
    local words=() word='' part last=${COMP_WORDS[COMP_CWORD]} is_joined=yes line
    [[ $last == [=:]* ]] || last=$2  # up to the cursor

    # Readline takes words apart at = and :, as in --radio=replay:FILE.
    for part in "${COMP_WORDS[@]:1:COMP_CWORD-1}" "$last"; do
        if [[ ! $is_joined && $part != [=:]* ]]; then
            words+=("$word")
            word=
        fi
        word+=$part
        is_joined=
        [[ $part != [=:]* ]] || is_joined=yes
    done

    COMPREPLY=()
    while IFS= read -r line; do
        if [[ $line == $'\t'* ]]; then
            compopt -o default  # files, which readline knows to quote
        elif [[ $line == "$word"* ]]; then
            line=${line%%$'\t'*}
            COMPREPLY+=("${line#"${word%"$2"}"}")
        fi
    done < <("${1/#\~/$HOME}" --complete "${words[@]}" "$word" 2>/dev/null)
    [[ ${COMPREPLY[*]} != *: ]] || compopt -o nospace
}

complete -F _inkora inkora
