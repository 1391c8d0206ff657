# shellcheck shell=bash
# Completes inkora in bash. A test compares the words with `inkora --help`.

_inkora() {
    local IFS=$' \t\n' option=$3 words=
    [[ $option == '=' ]] && option=${COMP_WORDS[COMP_CWORD - 2]}  # of --radio=virtual
    COMPREPLY=()

    case $option in
        --radio) words='system virtual replay:' ;;
        --seed | --count | --for | --ask-every) return ;;
        --palette | --record | :)  # a file, as in replay:FILE
            compopt -o default
            return
            ;;
        *)
            case "${COMP_WORDS[*]:1:COMP_CWORD - 1} " in
                ' ') words='watch info json palette doctor --version' ;;
                'watch '*) words='--radio --seed --count --for --ask-every --palette --record --with-addresses --at-once --json' ;;
                'info '*) words='--radio --seed --at-once --json' ;;
                'doctor '*) words='--for --json' ;;
                'json ') words='get set merge format' ;;
                'json get '*) words='--raw' ;;
                'json set '*) words='--string --in-place' ;;
                'json format '*) words='--compact --sorted' ;;
            esac
            words+=' --help'
            ;;
    esac
    if [[ $2 != -* && ${COMP_WORDS[1]} == palette ]] && ((COMP_CWORD > 1)) ||
        [[ $2 != -* && ${COMP_WORDS[1]} == json ]] && ((COMP_CWORD > 2)); then
        compopt -o default  # files, which readline knows to quote
    else
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$2")
    fi
}

complete -F _inkora inkora
