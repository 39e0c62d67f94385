#!/usr/bin/env bash
# Installs a build into a temporary prefix and builds and runs a small
# program against the installed files, through pkg-config and through
# find_package. The program preprocesses the sample dumps, loads them and
# asks for one document and searches a word. The pkg-config file must give the project's version
# and paths without "//".
# When the build has the Python package, /usr/bin/python3 imports it from
# PYTHON_DIR under the prefix (Python's own layout) and answers the same.
# Usage: run.sh BUILD_DIR SAMPLE_DIR/ C_COMPILER CXX_COMPILER GENERATOR VERSION [PYTHON_DIR]
set -euo pipefail
build=$1 sample=$2 cc=$3 cxx=$4 generator=$5 version=$6 python_dir=${7:-}
here=$(cd "$(dirname "$0")" && pwd)
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
prefix=$tmp/prefix
expected="107: chen95 1995; 33 documents, 539 words, 21 authors; suffix: 1 found, best 107"

cmake --install "$build" --prefix "$prefix" >/dev/null
test -x "$prefix/bin/refgrove"
# The public headers, all of them and nothing else, flat in include/refgrove/.
if ! diff <(cd "$here/../../include/refgrove" && find . | sort) <(cd "$prefix/include/refgrove" && find . | sort); then
  echo "the installed include/refgrove/ differs from the source tree's" >&2
  exit 1
fi
# The man page reads, and covers every command.
man_page=$(MANWIDTH=100 man -l "$prefix/share/man/man1/refgrove.1" 2>/dev/null)
for command in $("$prefix/bin/refgrove" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z-]*\) .*/\1/p'); do
  if ! grep -q "^   refgrove $command\$" <<<"$man_page"; then
    echo "the man page has no section for refgrove $command" >&2
    exit 1
  fi
done

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
pc_version=$(PKG_CONFIG_PATH=$pc_dir pkg-config --modversion refgrove)
if [[ $flags == *//* || $pc_version != "$version" ]]; then
  echo "pkg-config: version '$pc_version' (expected '$version'), flags '$flags' (paths without '//')" >&2
  exit 1
fi
"$cc" -Wall -Wextra -Werror -o "$tmp/pkgconfig_c" "$here/use_refgrove.c" $flags
check pkgconfig_c "$tmp/pkgconfig_c"

# find_package, in a project of its own.
cmake -S "$here" -B "$tmp/consumer" -G "$generator" -DCMAKE_PREFIX_PATH="$prefix" -DREFGROVE_VERSION="$version" \
      -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_C_FLAGS="-Wall -Wextra -Werror" \
      -DCMAKE_CXX_FLAGS="-Wall -Wextra -Werror" >/dev/null
cmake --build "$tmp/consumer" >/dev/null
check find_package_c "$tmp/consumer/use_refgrove_c"
check find_package_cxx "$tmp/consumer/use_refgrove_cxx"

if [ -n "$python_dir" ]; then
  out=$(cd "$tmp" && PYTHONPATH="$prefix/$python_dir" /usr/bin/python3 -c "
import refgrove
assert refgrove.__file__ == '$prefix/$python_dir/refgrove/__init__.py', refgrove.__file__
refgrove.preprocess('$sample', '$tmp/data_python', progress=False)
with refgrove.load('$tmp/data_python') as ds:
    doc = ds.document(107)
    print(f'{doc.did}: {doc.key} {doc.year}; {len(ds)} records; {refgrove.__version__}')")
  if [ "$out" != "107: chen95 1995; 32 records; $version" ]; then
    echo "python: got '$out'" >&2
    exit 1
  fi
  test -f "$prefix/$python_dir/refgrove/py.typed" && test -f "$prefix/$python_dir/refgrove/_refgrove.pyi"
  echo "python: ok"
fi
