#!/bin/bash
# Says which lines and branches of src/ and emulator/ the native tests reach: a table here, every line in
# build/coverage/report/. Fails when src/ falls below 97 % of its lines.
set -eu
. "$(dirname "$0")/common.sh"
cd "$root"

install_packages gcovr

step "Build and run the native tests"
cmake --preset coverage >/dev/null
cmake --build --preset coverage
find build/coverage -name '*.gcda' -delete
ctest --preset coverage --output-log build/coverage/tests.log >/dev/null || { cat build/coverage/tests.log; exit 1; }

report() { gcovr --root . --exclude-throw-branches --exclude-unreachable-branches "$@" build/coverage; }
mkdir -p build/coverage/report
report --filter src/ --filter emulator/ --html-details build/coverage/report/index.html

step "Coverage of emulator/"
report --filter emulator/ --print-summary
step "Coverage of src/"
report --filter src/ --print-summary --fail-under-line 97
