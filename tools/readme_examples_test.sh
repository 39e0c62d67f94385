#!/usr/bin/env bash
# Runs every refgrove command that the README and the pages of docs/ show,
# page by page in each page's order, from the source tree as a user would
# type it, with the tool of the build on PATH. Each page stands on its own:
# /tmp/ in its commands stands for a fresh directory of the test's own, so a
# page that uses a data directory makes it in an earlier line. A command
# shown with "$ " and followed by its output must print that output
# (standard output; standard error only where the command sends it to
# standard output). Every command must exit 0, but `refgrove check` once the
# page has damaged the directory with truncate, which must exit 1.
# Usage: readme_examples_test.sh SOURCE_DIR TOOL_DIR
set -uo pipefail
source_dir=$1
export PATH="$2:$PATH"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$source_dir" || exit 1

failures=0
# A command's output as the page shows it: the test's directory read back
# as /tmp/.
run() {
  local command=${1//\/tmp\//$work/} expected_status=0
  [[ $1 == "truncate "* ]] && damaged=1
  [[ $1 == "refgrove check "* && $damaged == 1 ]] && expected_status=1
  output=$(bash -c "$command" 2>/dev/null)
  local status=$?
  output=${output//$work\//\/tmp\/}
  if [[ $status != "$expected_status" ]]; then
    echo "FAIL (status $status, not $expected_status): $page: $1"
    failures=$((failures + 1))
    return 1
  fi
}

check_output() {
  if [[ -n $1 && $output != "$2" ]]; then
    printf 'FAIL (output): %s: %s\n--- shown\n%s\n--- actual\n%s\n' "$page" "$1" "$2" "$output"
    failures=$((failures + 1))
  fi
}

# Subcommands that this build of the tool leaves out (the i386 tool has no
# import or serve): their commands are skipped, and so are the later
# commands of the page that use what they would have made under /tmp/.
missing_commands=" "
subcommands=$(refgrove --help)
for sub in import serve; do
  [[ $subcommands =~ $'\n'\ +$sub\  ]] || missing_commands+="$sub "
done

# Whether `command` is skipped; a skipped command's /tmp/ paths join
# `skipped_paths`.
skipped() {
  local words word
  read -ra words <<< "$1"
  for word in "${words[@]}"; do
    [[ $word == /tmp/* && " $skipped_paths " == *" $word "* ]] && return 0
  done
  [[ $missing_commands == *" ${words[1]} "* ]] || return 1
  for word in "${words[@]}"; do
    [[ $word == /tmp/* ]] && skipped_paths+=" $word"
  done
  return 0
}

# The page's shell lines: commands in indented blocks, with or without a
# "$ " prompt; the lines below a prompted command up to the next command or
# the block's end are its output. Synopses (`refgrove check DIR`) are skipped.
run_page() {
  page=$1 work=$scratch/${1//\//_} damaged=0 skipped_paths=""
  mkdir "$work" || return
  local shown_command="" shown_output="" prompt_indent="" line prompted command
  while IFS= read -r line; do
    if [[ $line =~ ^(\ {4,8})(\$\ )?((refgrove|printf\ .*\|\ *refgrove|truncate)\ .*)$ ]]; then
      check_output "$shown_command" "$shown_output"
      shown_command="" shown_output="" prompt_indent=${BASH_REMATCH[1]}
      prompted=${BASH_REMATCH[2]}
      command=${BASH_REMATCH[3]%%  #*}  # without a trailing comment
      command=${command%"${command##*[! ]}"}
      [[ $command =~ \ (DIR|IN_DIR|OUT_DIR|FILE)(\ |$) ]] && continue
      skipped "$command" && continue
      run "$command" && [[ -n $prompted ]] && shown_command=$command
    elif [[ -n $shown_command && $line == "$prompt_indent"[!\ \$]* || -n $shown_command && $line == "$prompt_indent  "* ]]; then
      [[ -n $shown_output ]] && shown_output+=$'\n'
      shown_output+=${line#"$prompt_indent"}
    else
      check_output "$shown_command" "$shown_output"
      shown_command="" shown_output=""
    fi
  done < "$page"
  check_output "$shown_command" "$shown_output"
}

for page in README.md docs/*.md; do
  run_page "$page"
done

echo "$failures failed"
[[ $failures == 0 ]]
