#compdef inkora
# Completes inkora in zsh. A test compares the words with `inkora --help`.

_inkora() {
    local curcontext=$curcontext context state line
    local -a help=('(- *)'{-h,--help}'[print help and exit]')
    local -a radio=(
        '--radio=[which Bluetooth]:radio:((
            system\:"this machine'"'"'s Bluetooth adapter" virtual\:"a pen simulated in this process"
            replay\\\:\:"a trace, FILE behind the colon, played again"))'
        '--at-once[play a trace without waiting]'
        '--seed=[which colours the virtual pen captures]:number')

    _arguments -C $help '(- *)--version[print the version and exit]' \
        '1:command:((watch\:"show colours as they are captured"
            info\:"ask a pen for name, identifier, battery and proximity"
            json\:"read, change and print JSON documents"
            palette\:"convert a palette"
            doctor\:"say what stands between this machine and a pen"))' \
        '*:: :->arguments' && return

    [[ $state == arguments ]] || return
    case $line[1] in
        watch)
            _arguments $help $radio \
                '--count=[end after so many colours]:colours' \
                '--for=[end after so much time]:seconds' \
                '--ask-every=[ask for battery and proximity again and again]:seconds' \
                '--palette=[add the colours to a palette]:file:_files' \
                '--record=[write a trace to be replayed]:file:_files' \
                '--with-addresses[leave device addresses in the trace]' \
                '--json[print a JSON object a line]' ;;
        info)
            _arguments $help $radio '--json[print one JSON object]' ;;
        doctor)
            _arguments $help '--for=[listen for so many seconds]:seconds' \
                '--json[print one JSON object]' ;;
        palette) _arguments $help '1:from:_files' '2:to:_files' ;;
        json)
            _arguments -C $help \
                '1:command:((get\:"print the value at a path"
                    set\:"print a document with one value changed"
                    merge\:"print a document merged with another"
                    format\:"print a document in another layout"))' \
                '*:: :->document' && return
            [[ $state == document ]] || return
            case $line[1] in
                get) _arguments $help '--raw[print a text without quotes and escapes]' \
                    '1:file:_files' '*:path' ;;
                set) _arguments $help '--string[take the value as a text even if it is JSON]' \
                    '--in-place[write to the file and print nothing]' '1:file:_files' '*:path' ;;
                merge) _arguments $help '1:file:_files' '2:other:_files' ;;
                format) _arguments $help '--compact[without blanks and line breaks]' \
                    '--sorted[members by key]' '1:file:_files' ;;
            esac ;;
    esac
}

_inkora "$@"
