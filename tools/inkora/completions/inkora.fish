# Completes inkora in fish, with the words that inkora itself tells.

function __inkora_complete
    set -l words (commandline --tokenize --cut-at-cursor --current-process)
    set -l word (commandline --current-token --cut-at-cursor)
    for line in ($words[1] --complete $words[2..] $word 2>/dev/null)
        if string match --quiet \t'*' -- $line
            set -l before (string sub --start 2 -- $line)
            set -l length (string length -- $before)
            string join \n -- $before(__fish_complete_path (string sub --start (math $length + 1) -- $word))
        else
            echo $line
        end
    end
end

complete --command inkora --no-files --arguments '(__inkora_complete)'
