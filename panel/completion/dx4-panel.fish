# SPDX-License-Identifier: MIT
# Completion of dx4-panel for fish.
complete -c dx4-panel -f
complete -c dx4-panel -l config -r -F -d 'drives and line, a TOML file'
complete -c dx4-panel -l demo -d 'show three simulated drives'
complete -c dx4-panel -l fullscreen -d 'cover the whole screen'
complete -c dx4-panel -l driver -r -F
complete -c dx4-panel -l sim -r -F
complete -c dx4-panel -l help
complete -c dx4-panel -l version
