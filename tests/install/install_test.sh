#!/usr/bin/env bash
# What "cmake --install" gives to people who have nothing but that. Every folder has a blank in its name.
set -euo pipefail

part=${1:?part} build=${2:?build folder} work=${3:?folder to work in} qt=${4:?5 or 6} libdir=${5:?library folder}
source_folder=$(cd "${0%/*}" && pwd)
stage="$work/a stage"
tree="$work/a moved tree"
headers="$tree/include/korvane_dx4"
cxx=${CXX:-c++}

fail() {
  printf '%s\n' "$@" >&2
  exit 1
}

# Ends the test as skipped where a tool is missing, and as failed where everything is required.
needs() {
  local tool
  for tool in "$@"; do
    command -v "$tool" >/dev/null && continue
    [ "${KORVANE_REQUIRE_ALL:-0}" = 1 ] && fail "$tool is not installed, and KORVANE_REQUIRE_ALL is set"
    echo "skipped: $tool is not installed"
    exit 77
  done
}

# Installs under a staging folder and moves the tree: nothing in it may remember where it was made.
stage() {
  rm -rf "$work"
  mkdir -p "$work"
  # The list of a real installation from this build is given back by uninstall().
  [ ! -f "$build/install_manifest.txt" ] || cp "$build/install_manifest.txt" "$work/manifest"
  DESTDIR="$stage" cmake --install "$build" --prefix /usr >"$work/install.log"
  mv "$stage/usr" "$tree"
}

# Each file has its place, and no other file is there.
files() {
  (cd "$tree" && find . -type f -o -type l) |
    sed -E -e "s|^\./||; s|^$libdir/|LIB/|; s|qt$qt|qtN|g; s|\.so\.[0-9.]*$|.so.VERSION|" \
      -e 's!-(none|debug|release|relwithdebinfo|minsizerel)\.cmake$!-CONFIG.cmake!' \
      -e 's!^(share/doc/korvane_dx4/|share/doc/korvane_dx4/examples/)[^/]+\.(md|cpp|toml|rules)$!\1ANY.\2!' |
    LC_ALL=C sort -u >"$work/files.txt"
  diff -u "$source_folder/installed_files.txt" "$work/files.txt" ||
    fail "these differ from tests/install/installed_files.txt"
}

# No file names a folder of the tree in which it was made; debug information apart, which a package maps
# or strips.
paths() {
  local root
  root=$(cd "$source_folder/../.." && pwd)
  if grep -rlF -e "$stage" "$tree" || grep -rlIF -e "$root" "$tree"; then
    fail "these name a folder of the build"
  fi
  # Installing puts another run path over the one of the build, whose length and build id stay.
  needs readelf
  local library
  for library in "$build"/lib/libkorvane_{host,journal}_"qt$qt.so"; do
    readelf -dW "$library" >"$work/dynamic.txt"
    ! grep -E '\(R(UN)?PATH\)' "$work/dynamic.txt" | grep -F -e "$build" || fail "$library was linked with this run path"
  done
}

# The headers need nothing but the installed tree, and go together.
headers() {
  needs pkg-config
  (cd "$headers" && find . -name '*.h' | sed 's|^\./\(.*\)|#include <\1>|' | LC_ALL=C sort) >"$work/all headers.cpp"
  check_syntax "$work/all headers.cpp"
}

# Each header compiles alone; two minutes.
each_header() {
  needs pkg-config
  export -f check_syntax
  export tree libdir qt cxx
  (cd "$headers" && find . -name '*.h') | sed 's|^\./||' |
    xargs -P "$(nproc)" -I {} bash -c 'echo "#include <{}>" | check_syntax - || { echo "{} does not compile alone" >&2; exit 1; }'
}

check_syntax() {
  local flags
  flags=$(PKG_CONFIG_PATH="$tree/$libdir/pkgconfig" pkg-config --cflags "korvane_dx4-journal-qt$qt" korvane_dx4-simulator)
  eval "$cxx -std=c++17 -fPIC -O0 -Wall -Wextra -Werror -fsyntax-only $flags -x c++ \"\$1\""
}

# A CMake project finds the package, links its parts and runs.
find_package() {
  if ! {
    cmake -S "$source_folder/consumer" -B "$work/a consumer" -G Ninja -DCMAKE_PREFIX_PATH="$tree" \
      -DKORVANE_QT_MAJOR="$qt" -DCMAKE_CXX_COMPILER="$cxx" && cmake --build "$work/a consumer"
  } >"$work/consumer.log" 2>&1; then
    cat "$work/consumer.log" >&2
    exit 1
  fi
  local program
  for program in runtime host host_static journal simulator; do
    env -u KORVANE_DRIVER "$work/a consumer/$program"
  done
}

# What is not installed is refused with a sentence that says what is missing.
missing() {
  local said
  mkdir -p "$work/a stranger"
  printf '%s\n' 'cmake_minimum_required(VERSION 3.21)' 'project(stranger LANGUAGES NONE)' \
    "find_package(korvane_dx4 REQUIRED COMPONENTS \${wanted})" >"$work/a stranger/CMakeLists.txt"
  refused() {
    rm -rf "$work/a stranger/build"
    if said=$(cmake -S "$work/a stranger" -B "$work/a stranger/build" -G Ninja -DCMAKE_PREFIX_PATH="$tree" "$@" 2>&1); then
      fail "accepted: $*"
    fi
    said=$(tr -s ' \n' ' ' <<<"$said")
  }
  refused -Dwanted=panel -DKORVANE_QT_MAJOR="$qt"
  [[ $said == *"no component 'panel' is installed here for Qt $qt"* ]] || fail "$said"
  refused -Dwanted=host -DKORVANE_QT_MAJOR=$((11 - qt))
  [[ $said == *"no component 'host' is installed here for Qt $((11 - qt))"* ]] || fail "$said"
}

# The same without CMake; the journal brings the host with it.
pkg_config() {
  needs pkg-config
  export PKG_CONFIG_PATH="$tree/$libdir/pkgconfig"
  local plugin flags
  plugin=$(pkg-config --variable=plugin "korvane_dx4-qt$qt")
  plugin=${plugin//\\/}
  [ -f "$plugin" ] || fail "pkg-config names $plugin, which is not there"
  flags=$(pkg-config --cflags --libs "korvane_dx4-host-qt$qt")
  eval "$cxx -std=c++17 -fPIC \"\$source_folder/consumer/host.cpp\" -o \"\$work/a host\" $flags"
  LD_LIBRARY_PATH="$tree/$libdir" env -u KORVANE_DRIVER "$work/a host"
  flags=$(pkg-config --cflags --libs korvane_dx4-simulator)
  eval "$cxx -std=c++17 \"\$source_folder/consumer/simulator.cpp\" -o \"\$work/a simulator\" $flags"
  "$work/a simulator"
}

# The installed tools find the plug-in without an option, and a line between them works.
tools() {
  local loaded plugin="$tree/$libdir/korvane_dx4/qt$qt/libkorvane_dx4.so"
  cd /
  unset KORVANE_DRIVER DX4_CONFIG
  export PATH="$tree/bin:$PATH"
  loaded=$(LD_DEBUG=files dx4 types 2>&1 >/dev/null | sed -n 's/.*calling init: \(.*libkorvane_dx4\.so\)$/\1/p')
  [ "$(readlink -f "$loaded")" = "$(readlink -f "$plugin")" ] || fail "dx4 loads '$loaded' and not $plugin"

  coproc simulator { exec dx4-sim --pty; }
  local word port value
  # shellcheck disable=SC2154  # coproc sets it
  read -r word port <&"${simulator[0]}"
  [ "$word" = pty ] || fail "dx4-sim says '$word $port' and no pseudo-terminal"
  value=$(dx4 get --port "$port" 'D 4')
  # shellcheck disable=SC2154
  kill "$simulator_PID"
  grep -F 566 <<<"$value" || fail "the simulator's DC link voltage is 566 V; dx4 reads: $value"
}

# Fish finishes words by the installed files.
fish() {
  needs fish
  export PATH="$tree/bin:$PATH"
  local typed wanted offered
  while IFS='|' read -r typed wanted; do
    offered=$(command fish --no-config -c "source '$tree'/share/fish/vendor_completions.d/dx4.fish
      source '$tree'/share/fish/vendor_completions.d/dx4-sim.fish
      complete -C '$typed'" | sed 's/\t.*//' | xargs)
    [ "$offered" = "$wanted" ] || fail "'$typed' is finished as '$offered' and not as '$wanted'"
  done <<'CASES'
dx4 sca|scan
dx4 frames re|read
dx4 params res|restore
dx4 watch --rec|--reconnect
dx4 frames decode 01 03 --req|--request
dx4 set C|CW
dx4 get --speed 38|38400
dx4 check --|--count --driver --help --json --read --write
dx4-sim --st|--stations
dx4-sim --speed 384|38400
CASES
  # Each option that the simulator's help names is finished.
  for typed in $(dx4-sim --help | sed -nE 's/^  (-h,)?(--[a-z]+).*/\2/p'); do
    offered=$(command fish --no-config -c "source '$tree'/share/fish/vendor_completions.d/dx4-sim.fish
      complete -C 'dx4-sim $typed'" | sed 's/\t.*//' | grep -cxF -e "$typed") || fail "dx4-sim $typed is not offered"
  done
}

# The package says what it is: its version is the one that debian/changelog begins with, and scripts/package.sh
# refuses what it does not understand.
package() {
  local top=$source_folder/../.. version wrong
  version=$(sed -n 's/^Version: //p' "$tree/$libdir/pkgconfig/korvane_dx4-qt$qt.pc")
  grep -qF "korvane-dx4 ($version)" <(head -n 1 "$top/debian/changelog") ||
    fail "debian/changelog does not begin with version $version"
  "$top/scripts/package.sh" --help | grep -q '^Usage: scripts/package.sh '
  for wrong in '--jobs 0' '--jobs' '--fast' 'one two'; do
    # shellcheck disable=SC2086  # one argument per word
    if "$top/scripts/package.sh" $wrong 2>"$work/said"; then fail "package.sh $wrong was taken"; else [ $? -eq 2 ]; fi ||
      fail "package.sh $wrong: another exit code than 2"
    grep -q '^package.sh: .*; see --help$' "$work/said" || fail "package.sh $wrong says: $(cat "$work/said")"
  done
}

# Prints what "nm" tells of the names in a file, one "namespace::Name" of the project a line.
own_names() {
  sed -E 's/^(vtable|VTT|typeinfo|typeinfo name|guard variable|non-virtual thunk|virtual thunk) (for|to) //' |
    sed -nE 's/^(dx4::[a-z]+::~?[A-Za-z_]+).*/\1/p' | grep -v '::operator' | LC_ALL=C sort -u
}

# Prints the classes that headers define and the functions that they declare, likewise.
declared_names() {
  local header
  find "$headers/$1" -name '*.h' | while read -r header; do
    sed -nE 's/^(class|struct) ([A-Za-z]+)( :.*| final.*)? ?\{.*/\2/p; s/^[A-Za-z].*[ *&]([a-z][A-Za-z]+)\(.*/\1/p' "$header"
  done | sed "s/^/dx4::$1::/" | LC_ALL=C sort -u
}

# A shared library exports what its installed headers declare and nothing else, and is asked for by its soname.
exports() {
  needs nm readelf c++filt
  local name library lacking beyond
  for name in host journal; do
    library="$tree/$libdir/libkorvane_${name}_qt$qt"
    readelf -d "$library.so" | grep -E "SONAME.*libkorvane_${name}_qt$qt\.so\.[0-9]+\.[0-9]+\]"
    nm -D --defined-only "$library.so" | sed 's/^[0-9a-f]* . //' | c++filt >"$work/$name.all"
    ! grep -vE "^([a-zA-Z -]+ (for|to) )?(dx4::$name::|.* dx4::$name::operator)" "$work/$name.all" ||
      fail "$name exports these beside its own names"
    own_names <"$work/$name.all" >"$work/$name.exported"
    declared_names $name >"$work/$name.declared"
    # What is compiled into those who use it, such as the end of a plain structure, is weak in the archive.
    nm --defined-only "$library.a" 2>/dev/null | sed -nE 's/^[0-9a-f]* [TDBR] //p' | c++filt | own_names |
      LC_ALL=C comm -12 - "$work/$name.declared" >"$work/$name.promised"
    lacking=$(LC_ALL=C comm -23 "$work/$name.promised" "$work/$name.exported")
    [ -z "$lacking" ] || fail "$name: these are declared and not exported:" "$lacking"
    beyond=$(LC_ALL=C comm -13 "$work/$name.declared" "$work/$name.exported")
    [ -z "$beyond" ] || fail "$name: these are exported and declared in no header:" "$beyond"
    [ "$(wc -l <"$work/$name.exported")" -gt 10 ] || fail "$name exports next to nothing"
  done
}

# What was installed is taken away again, with every folder that is ours.
uninstall() {
  mv "$tree" "$stage/usr"
  DESTDIR="$stage" cmake --build "$build" --target uninstall >"$work/uninstall.log"
  if [ -f "$work/manifest" ]; then
    mv "$work/manifest" "$build/install_manifest.txt"
  else
    rm -f "$build/install_manifest.txt"
  fi
  local left
  left=$(find "$stage" -type f -o -type l -o -name 'korvane_dx4*')
  [ -z "$left" ] || fail "left behind:" "$left"
}

"$part"
