# SPDX-License-Identifier: MIT
# Completion of dx4-sim for fish.
complete -c dx4-sim -f
complete -c dx4-sim -l pty -d 'serve a new pseudo-terminal'
complete -c dx4-sim -l port -x -a '(__fish_complete_path /dev/tty)' -d 'serve a serial port'
complete -c dx4-sim -l link -r -F -d 'name of the pseudo-terminal that lasts'
complete -c dx4-sim -l speed -x -a '0 1200 2400 4800 9600 19200 38400 57600 115200 230400'
complete -c dx4-sim -l format -x -a '8N1 8N2 8E1 8E2 8O1 8O2'
complete -c dx4-sim -l turnaround -x
complete -c dx4-sim -l stations -x
complete -c dx4-sim -l values -r -F
complete -c dx4-sim -l faults -r -F
complete -c dx4-sim -l seed -x
complete -c dx4-sim -l log -r -F
complete -c dx4-sim -l pcap -r -F
complete -c dx4-sim -l json
complete -c dx4-sim -l help
complete -c dx4-sim -l version
