#!/bin/bash
# Sets up, builds everything and passes every test.
set -eu
. "$(dirname "$0")/common.sh"
cd "$root"

scripts/setup.sh

step "Build the Windows library, the tool and the tests"
cmake --preset windows >/dev/null
cmake --build --preset windows

step "Check layout, folder borders and lint"
scripts/lint.sh

step "Run the tests under Wine"
start_wine
ctest --preset windows
