#!/bin/sh
# SPDX-License-Identifier: MIT
# One round of `dx4 watch` beside `dx4 get` over growing plants on a simulated line without delays.
#
#   scripts/bench_watch.sh [build folder]
#
# Prints stations, registers, and seconds of the clock and of the processor for both.
set -eu
build=$(cd "${1:-build/dev}" && pwd)
KORVANE_DRIVER=$build/lib/libkorvane_dx4.so
export KORVANE_DRIVER
folder=$(mktemp -d)
simulator=
trap 'kill $simulator 2>/dev/null || true; rm -r "$folder"' EXIT

# The registers of one station, 201 in all.
registers() {
    for run in 0-18 1-18 2-18 3-16 4-28 5-26 6-19 8-17; do
        printf ' %s:F %s.0-%s.%s' "$1" "${run%-*}" "${run%-*}" "${run#*-}"
    done
    printf ' %s:D 0-31 %s:SW' "$1" "$1"
}

# Clock and processor time of a command, in seconds.
timed() {
    command time -f '%e %U %S' -o "$folder/time" "$@" >/dev/null
    awk '{ printf "%8.2f %8.2f", $1, $2 + $3 }' "$folder/time"
}

printf '%8s %9s %17s %17s\n' stations registers 'watch s, CPU s' 'get s, CPU s'
for count in 4 8 16 32; do
    stations=$(seq -s , 1 "$count")
    mkfifo "$folder/commands"
    "$build/simulator/dx4-sim" --pty --speed 0 --turnaround 0 --stations "$stations" \
        <"$folder/commands" >"$folder/pty" &
    simulator=$!
    exec 3>"$folder/commands"
    until grep -q '^pty' "$folder/pty"; do sleep 0.1; done
    port=$(sed -n 's/^pty //p' "$folder/pty")
    words=
    for station in $(seq 1 "$count"); do words="$words$(registers "$station")"; done
    watched=$("$build/cli/dx4" watch --port "$port" --rounds 1 --csv $words | wc -l)
    watch=$(timed "$build/cli/dx4" watch --port "$port" --rounds 1 --csv $words)
    get=$(timed "$build/cli/dx4" get --port "$port" $words)
    printf '%8d %9d %s %s\n' "$count" "$((watched - 1))" "$watch" "$get"
    exec 3>&-
    kill "$simulator"
    wait "$simulator" 2>/dev/null || true
    rm "$folder/commands"
done
