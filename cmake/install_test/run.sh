#!/usr/bin/env bash
# Installs a build into a temporary prefix and builds and runs a small
# program against the installed files, through pkg-config and through
# find_package. The program preprocesses the sample dumps, loads them and
# asks for one document and searches a word.
# Usage: run.sh BUILD_DIR SAMPLE_DIR/ C_COMPILER CXX_COMPILER GENERATOR
set -euo pipefail
build=$1 sample=$2 cc=$3 cxx=$4 generator=$5
here=$(cd "$(dirname "$0")" && pwd)
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
prefix=$tmp/prefix
expected="107: chen95 1995; 33 documents, 539 words, 21 authors; suffix: 1 found, best 107"

cmake --install "$build" --prefix "$prefix" >/dev/null
test -x "$prefix/bin/refgrove"
test -f "$prefix/include/refgrove/refgrove.h"
test -f "$prefix/include/refgrove/network.h"
test -f "$prefix/include/refgrove/search.h"

check() {  # check NAME PROGRAM: runs PROGRAM on a data directory of its own
  local out needed
  # The library has no soname: the program must record its name, not a path.
  needed=$(readelf -d "$2" | sed -n 's/.*(NEEDED).*\[\(.*refgrove.*\)\]/\1/p')
  if [ "$needed" != refgrove.so ]; then
    echo "$1: needs '$needed', expected 'refgrove.so'" >&2
    exit 1
  fi
  out=$("$2" "$sample" "$tmp/data_$1/" 107 2>/dev/null | tail -n 1)  # after the progress lines
  if [ "$out" != "$expected" ]; then
    echo "$1: got '$out', expected '$expected'" >&2
    exit 1
  fi
  echo "$1: ok"
}

# pkg-config, from a prefix that is not on any search path.
pc_dir=$(dirname "$(find "$prefix" -name refgrove.pc)")
flags=$(PKG_CONFIG_PATH=$pc_dir pkg-config --cflags --libs refgrove)
"$cc" -Wall -Wextra -Werror -o "$tmp/pkgconfig_c" "$here/use_refgrove.c" $flags
check pkgconfig_c "$tmp/pkgconfig_c"

# find_package, in a project of its own.
cmake -S "$here" -B "$tmp/consumer" -G "$generator" -DCMAKE_PREFIX_PATH="$prefix" \
      -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_C_FLAGS="-Wall -Wextra -Werror" \
      -DCMAKE_CXX_FLAGS="-Wall -Wextra -Werror" >/dev/null
cmake --build "$tmp/consumer" >/dev/null
check find_package_c "$tmp/consumer/use_refgrove_c"
check find_package_cxx "$tmp/consumer/use_refgrove_cxx"
