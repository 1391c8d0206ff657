# Completes inkora in fish. A test compares the words with `inkora --help`.

# Whether these words are the command so far, and no further one of it is to come.
function __inkora_in
    set -l words (commandline --tokenize --cut-at-cursor --current-process)[2..]
    for i in (seq (count $argv))
        test "$words[$i]" = "$argv[$i]"; or return 1
    end
end
function __inkora_at
    test (count (commandline --tokenize --cut-at-cursor --current-process)) = (math 1 + (count $argv))
    and __inkora_in $argv
end

set -l command
complete -c inkora --no-files
complete -c inkora -s h -l help -d 'Print help and exit'
complete -c inkora -n __inkora_at -l version -d 'Print the version and exit'
complete -c inkora -n __inkora_at -a watch -d 'Show colours as they are captured'
complete -c inkora -n __inkora_at -a info -d 'Ask a pen for name, identifier, battery and proximity'
complete -c inkora -n __inkora_at -a json -d 'Read, change and print JSON documents'
complete -c inkora -n __inkora_at -a palette -d 'Convert a palette'
complete -c inkora -n __inkora_at -a doctor -d 'Say what stands between this machine and a pen'

for command in watch info
    complete -c inkora -n "__inkora_in $command" -l radio -x -a 'system virtual replay:' -d 'Which Bluetooth'
    complete -c inkora -n "__inkora_in $command" -l seed -x -d 'Which colours the virtual pen captures'
    complete -c inkora -n "__inkora_in $command" -l at-once -d 'Play a trace without waiting'
    complete -c inkora -n "__inkora_in $command" -l json -d 'Print JSON, for programs'
end
complete -c inkora -n '__inkora_in watch' -l count -x -d 'End after so many colours'
complete -c inkora -n '__inkora_in watch' -l for -x -d 'End after so many seconds'
complete -c inkora -n '__inkora_in watch' -l ask-every -x -d 'Ask for battery and proximity every so many seconds'
complete -c inkora -n '__inkora_in watch' -l palette -r --force-files -d 'Add the colours to a palette'
complete -c inkora -n '__inkora_in watch' -l record -r -F -d 'Write a trace to be replayed'
complete -c inkora -n '__inkora_in watch' -l with-addresses -d 'Leave device addresses in the trace'

complete -c inkora -n '__inkora_in doctor' -l for -x -d 'Listen for so many seconds'
complete -c inkora -n '__inkora_in doctor' -l json -d 'Print one JSON object'
complete -c inkora -n '__inkora_in palette' --force-files

complete -c inkora -n '__inkora_at json' -a get -d 'Print the value at a path'
complete -c inkora -n '__inkora_at json' -a set -d 'Print a document with one value changed'
complete -c inkora -n '__inkora_at json' -a merge -d 'Print a document merged with another'
complete -c inkora -n '__inkora_at json' -a format -d 'Print a document in another layout'
for command in get set merge format
    complete -c inkora -n "__inkora_in json $command" --force-files
end
complete -c inkora -n '__inkora_in json get' -l raw -d 'Print a text without quotes and escapes'
complete -c inkora -n '__inkora_in json set' -l string -d 'Take the value as a text even if it is JSON'
complete -c inkora -n '__inkora_in json set' -l in-place -d 'Write to the file and print nothing'
complete -c inkora -n '__inkora_in json format' -l compact -d 'Without blanks and line breaks'
complete -c inkora -n '__inkora_in json format' -l sorted -d 'Members by key'
