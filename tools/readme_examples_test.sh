#!/usr/bin/env bash
# Runs every refgrove command that the README shows, in the README's order,
# from the source tree as a user would type it, with the tool of the build
# on PATH. /tmp/ in the commands stands for a fresh directory of the test's
# own. A command shown with "$ " and followed by its output must print that
# output (standard output; standard error only where the command sends it
# to standard output). Every command must exit 0, but `refgrove check` once
# the README has damaged the directory with truncate, which must exit 1.
# Usage: readme_examples_test.sh SOURCE_DIR TOOL_DIR
set -uo pipefail
source_dir=$1
export PATH="$2:$PATH"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$source_dir" || exit 1

failures=0
damaged=0
# A command's output as the README shows it: the test's directory read back
# as /tmp/.
run() {
  local command=${1//\/tmp\//$work/} expected_status=0
  [[ $1 == "truncate "* ]] && damaged=1
  [[ $1 == "refgrove check "* && $damaged == 1 ]] && expected_status=1
  output=$(bash -c "$command" 2>/dev/null)
  local status=$?
  output=${output//$work\//\/tmp\/}
  if [[ $status != "$expected_status" ]]; then
    echo "FAIL (status $status, not $expected_status): $1"
    failures=$((failures + 1))
    return 1
  fi
}

check_output() {
  if [[ -n $1 && $output != "$2" ]]; then
    printf 'FAIL (output): %s\n--- README\n%s\n--- actual\n%s\n' "$1" "$2" "$output"
    failures=$((failures + 1))
  fi
}

# The README's shell lines: commands in indented blocks, with or without a
# "$ " prompt; the lines below a prompted command up to the next command or
# the block's end are its output. Synopses (`refgrove check DIR`) are skipped.
shown_command="" shown_output="" prompt_indent=""
while IFS= read -r line; do
  if [[ $line =~ ^(\ {4,8})(\$\ )?((refgrove|printf\ .*\|\ *refgrove|truncate)\ .*)$ ]]; then
    check_output "$shown_command" "$shown_output"
    shown_command="" shown_output="" prompt_indent=${BASH_REMATCH[1]}
    prompted=${BASH_REMATCH[2]}
    command=${BASH_REMATCH[3]%%  #*}  # without a trailing comment
    command=${command%"${command##*[! ]}"}
    [[ $command =~ \ (DIR|IN_DIR|OUT_DIR|FILE)(\ |$) ]] && continue
    run "$command" && [[ -n $prompted ]] && shown_command=$command
  elif [[ -n $shown_command && $line == "$prompt_indent"[!\ \$]* || -n $shown_command && $line == "$prompt_indent  "* ]]; then
    [[ -n $shown_output ]] && shown_output+=$'\n'
    shown_output+=${line#"$prompt_indent"}
  else
    check_output "$shown_command" "$shown_output"
    shown_command="" shown_output=""
  fi
done < README.md
check_output "$shown_command" "$shown_output"

echo "$failures failed"
[[ $failures == 0 ]]
