# SPDX-License-Identifier: MIT
# Completion of dx4 for fish. The program itself says what the last word may become.

function __dx4_complete
    set -l words (commandline -opc)
    set -l offered ($words[1] --complete $words[2..-1] (commandline -ct) 2>/dev/null)
    if string match -q ':files*' -- $offered[1]
        __fish_complete_path (commandline -ct)
    else
        printf '%s\n' $offered
    end
end

complete -c dx4 -f -a '(__dx4_complete)'
