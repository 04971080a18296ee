#!/bin/bash
# Sets up, builds everything and passes every test.
set -eu
. "$(dirname "$0")/common.sh"
cd "$root"

scripts/setup.sh

step "Build the portable sources and their tests with sanitizers"
cmake --preset native >/dev/null
cmake --build --preset native

step "Run the tests with sanitizers"
ctest --preset native --parallel "$(nproc)"

step "Build the Windows library, the tool and the tests"
cmake --preset windows >/dev/null
cmake --build --preset windows

step "Check layout, folder borders and lint"
scripts/lint.sh

step "Run the tests under Wine"
start_wine
ctest --preset windows

step "Look at a report in Chromium"
scripts/test-page.sh

scripts/test-package.sh
