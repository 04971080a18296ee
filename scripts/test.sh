#!/bin/bash
# Sets up, builds everything and runs every test. With --quick: builds natively and runs the native tests that have not
# passed since something they are made of or read has changed.
set -eu
. "$(dirname "$0")/common.sh"
cd "$root"

case ${1:-} in
  '' | --quick) ;;
  *) echo "usage: scripts/test.sh [--quick]" >&2; exit 2 ;;
esac

scripts/setup.sh

step "Build the portable sources and their tests with sanitizers"
cmake --preset native >/dev/null
cmake --build --preset native

if [ "${1:-}" = --quick ]; then
  passed=build/native/passed
  mkdir -p "$passed"
  programs=()
  for program in build/native/bin/*; do
    # The tool's tests are linked anew with each new tool.
    [ "${program##*/}" != corvane-firewall ] || continue
    mark=$passed/${program##*/}
    # Tests read documents and tables, too.
    if [ ! "$mark" -nt "$program" ] || [ -n "$(find docs tests ! -name '*.cpp' -newer "$mark" -print -quit)" ]; then
      programs+=("${program##*/}")
    fi
  done
  step "Run what has changed: ${programs[*]:-nothing}"
  [ ${#programs[@]} -gt 0 ] || exit 0
  # A long program has several entries, with a number behind its name.
  touch "$passed/.started"
  ctest --preset native --parallel "$(nproc)" --tests-regex "^($(IFS='|' && echo "${programs[*]}"))(_[0-9]+)?\$"
  touch -r "$passed/.started" "${programs[@]/#/$passed/}"
  exit 0
fi

step "Run the tests with sanitizers"
ctest --preset native --parallel "$(nproc)"

step "Build the Windows library, the tool and the tests"
cmake --preset windows >/dev/null
cmake --build --preset windows

step "Check layout, folder borders and lint"
scripts/lint.sh

step "Run the tests under Wine"
start_wine
ctest --preset windows --parallel 4 # a program waits more for Wine than it computes

step "Look at a report in Chromium"
scripts/test-page.sh

scripts/test-package.sh
scripts/test-release.sh
