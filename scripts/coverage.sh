#!/bin/bash
# Measures which lines and branches the tests reach. Prints a table, and writes every line to build/coverage/report/.
# Fails if a folder is below its share of lines, given at the end of this file. Portable code is measured natively; the
# tool, of which only a part is portable, under Wine, where its tests run it as a program. The scripts of the report's
# page are not measured: scripts/test-page.sh tests them in a browser.
set -eu
. "$(dirname "$0")/common.sh"
cd "$root"

scripts/setup.sh
install_packages gcovr

run_tests() { # run_tests PRESET
  step "Build and run the tests of the preset $1"
  cmake --preset "$1" >/dev/null
  cmake --build --preset "$1"
  find "build/$1" -name '*.gcda' -delete
  ctest --preset "$1" --parallel "$(nproc)" --output-log "build/$1/tests.log" >/dev/null || {
    cat "build/$1/tests.log"
    exit 1
  }
}
run_tests coverage
start_wine
run_tests coverage-windows

mkdir -p build/coverage/counts build/coverage/report
counts() { gcovr --root . --exclude-throw-branches --exclude-unreachable-branches "$@"; }
counts --filter '(src|catalog|emulator|policy|promises)/' --json build/coverage/counts/native.json build/coverage
counts --filter tools/ --gcov-executable x86_64-w64-mingw32-gcov-posix --json build/coverage/counts/tools.json \
  build/coverage-windows
report() { counts --add-tracefile 'build/coverage/counts/*.json' "$@"; }
report --html-details build/coverage/report/index.html

short=()
demand() { # demand PERCENT FOLDER
  step "Coverage of $2/"
  report --filter "$2/" --print-summary --fail-under-line "$1" || short+=("$2/ needs $1 % of its lines")
}
demand 99 src
demand 95 catalog
demand 95 emulator
demand 95 policy
demand 95 promises
demand 95 tools

[ ${#short[@]} -eq 0 ] || { printf '\nToo little: %s\n' "${short[@]}"; exit 1; }
