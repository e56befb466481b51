#!/usr/bin/env bash
# Replays the kept corpora, then fuzzes every target for a while.
set -euo pipefail

if [ "${1:-}" = --help ] || [ "${1:-}" = -h ]; then
  cat <<'TEXT'
Usage: fuzz/replay.sh [TARGET...]

Builds the fuzz targets with Clang, AddressSanitizer and UndefinedBehaviorSanitizer into build/fuzz,
replays their corpora and fuzzes each target, all when none is named. New inputs stay in
build/fuzz/found/TARGET; an input that breaks a rule is named in the output.

Environment:
  FUZZ_SECONDS  seconds per target (default 60); 0 replays only
  FUZZ_SEED     seed of the fuzzer (default: drawn, and printed)

Exit code: 0 when no rule was broken.
TEXT
  exit 0
fi

cd "$(dirname "$0")/.."
seconds=${FUZZ_SECONDS:-60}
seed=${FUZZ_SEED:-$((RANDOM * 32768 + RANDOM + 1))}
targets=("$@")
[ $# -gt 0 ] || targets=(fuzz_reply fuzz_sequence fuzz_guard
  fuzz_address_text fuzz_property_text fuzz_multi_copy
  fuzz_config fuzz_parameter_set fuzz_pcap fuzz_fault_file fuzz_commands fuzz_frame_text fuzz_scan_state
  fuzz_typed_words)

build() {
  local log=build/fuzz/build.log
  mkdir -p build/fuzz
  # Debug keeps Qt's own assertions; -O2 makes up for the sanitizers.
  if ! { cmake -G Ninja -B build/fuzz -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=Debug \
    -DCMAKE_CXX_FLAGS_DEBUG="-O2 -g" -DKORVANE_SANITIZE=ON -DKORVANE_BUILD_FUZZ=ON \
    -DKORVANE_BUILD_TOOLS=ON -DKORVANE_REQUIRE_ALL="${KORVANE_REQUIRE_ALL:-0}" \
    -DKORVANE_WERROR=ON &&
    cmake --build build/fuzz --target "${targets[@]}"; } >"$log" 2>&1; then
    tail -n 60 "$log" >&2
    echo "replay.sh: the build failed; all output is in $log" >&2
    exit 1
  fi
}

# Runs one target with these options and shows its figures, or all it said when a rule was broken.
run() {
  local target=$1 log=build/fuzz/$1.log
  shift
  # A small quarantine stays in the processor's cache; stacks of allocations are shown when the input
  # is played alone. Leaks are looked for once, at the end.
  if ! ASAN_OPTIONS=quarantine_size_mb=2:malloc_context_size=${stacks:-0} \
    "build/fuzz/fuzz/$target" -print_final_stats=1 -detect_leaks=0 \
    -artifact_prefix="build/fuzz/$target-" "$@" >"$log" 2>&1; then
    tail -n 60 "$log" >&2
    echo "replay.sh: $target failed" >&2
    exit 1
  fi
}

play() {
  local target=$1
  local corpus=fuzz/corpus/$target
  # A request of the guard's trial takes about ten bytes.
  local longest=200
  case $target in fuzz_guard | fuzz_config | fuzz_parameter_set | fuzz_pcap | fuzz_fault_file) longest=600 ;; esac
  stacks=10 run "$target" -runs=0 "$corpus"
  printf '%-20s %5d inputs replayed\n' "$target" "$(find "$corpus" -type f | wc -l)"
  [ "$seconds" -gt 0 ] || return 0
  mkdir -p "build/fuzz/found/$target"
  # Weighing inputs by the rarity of what they reach costs more than many of the executions.
  run "$target" -max_total_time="$seconds" -seed="$seed" -max_len="$longest" -len_control=10 -entropic=0 \
    "build/fuzz/found/$target" "$corpus"
  printf '%-20s %9d executions in %d s, seed %d\n' "$target" \
    "$(sed -n 's/^stat::number_of_executed_units: *//p' "build/fuzz/$target.log")" "$seconds" "$seed"
}

build
plays=()
for target in "${targets[@]}"; do
  # As many at once as there are processors; which of them failed is asked at the end.
  while [ "$(jobs -rp | wc -l)" -ge "$(nproc)" ]; do wait -n || true; done
  play "$target" &
  plays+=($!)
done
failed=0
for process in "${plays[@]}"; do
  wait "$process" || failed=1
done
exit $failed
