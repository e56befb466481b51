# shellcheck shell=bash
# Shows how far a step is whose output goes into a log; for the scripts beside it, which source this file.

# Says in words how much time "seconds" is: "40 s", "6 min".
in_words() {
  if (($1 < 90)); then echo "$1 s"; else echo "$((($1 + 30) / 60)) min"; fi
}

# Prints "done total" from the last of ninja's "[done/total]" in a log; nothing where there is none yet.
ninja_progress() {
  grep -aoE '^\[[0-9]+/[0-9]+\]' "$1" 2>/dev/null | tail -n 1 | tr -d '[]' | tr '/' ' '
}

# Prints "done total" of what apt unpacks and sets up; nothing while it downloads.
apt_progress() {
  local total
  total=$(sed -nE 's/^[0-9]+ upgraded, ([0-9]+) newly installed.*/\1/p' "$1" | tail -n 1)
  [ -z "$total" ] || echo "$(grep -cE '^(Unpacking|Setting up) ' "$1") $((2 * total))"
}

# Waits for a process. Standard error says how far it is: on a terminal in one line that is renewed, elsewhere in a
# line for every fourth of the work. The rest is estimated from what was done before, once a twentieth is done.
#
#   show_progress PID LOG FUNCTION    FUNCTION prints "done total" of LOG
show_progress() {
  local begun=$SECONDS pid=$1 log=$2 counted=$3 quarter=0 spent part total text
  while kill -0 "$pid" 2>/dev/null; do
    read -r part total <<<"$("$counted" "$log" || true)"
    spent=$((SECONDS - begun))
    text="preparing, $(in_words $spent)"
    if [ -n "$total" ] && ((total > 0)); then
      text="$part of $total after $(in_words $spent)"
      if ((part * 20 >= total && part < total)); then text="$text, about $(in_words $((spent * (total - part) / part))) left"; fi
    fi
    if [ -t 2 ]; then
      printf '\r\033[K  %s' "$text" >&2
    elif [ -n "$total" ] && ((total > 0 && part < total && part * 4 / total > quarter)); then
      quarter=$((part * 4 / total))
      echo "  $text" >&2
    fi
    sleep 1
  done
  [ ! -t 2 ] || printf '\r\033[K' >&2
}
