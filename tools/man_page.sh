#!/usr/bin/env bash
# Writes the man page of the refgrove tool with help2man: the synopsis and
# the list of commands from `refgrove --help`, then a section COMMANDS with
# each command's own --help, as the tool prints it.
# Usage: man_page.sh REFGROVE OUT_FILE
set -euo pipefail
tool=$1 out=$2
include=$(mktemp)
trap 'rm -f "$include"' EXIT
{
  echo "[COMMANDS]"
  for command in $("$tool" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z-]*\) .*/\1/p'); do
    echo ".SS \"refgrove $command\""
    echo ".nf"
    # roff: a backslash is written \e, a line may not start with . or '
    "$tool" "$command" --help | sed -e 's/\\/\\e/g' -e "s/^[.']/\\\\\&&/"
    echo ".fi"
  done
} >"$include"
help2man --no-info --section=1 --name="command-line tools around the refgrove citation data files" \
         --include="$include" --output="$out" "$tool"
