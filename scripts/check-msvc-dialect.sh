#!/bin/bash
# Checks that Visual Studio would accept the sources: clang reads each of them in its dialect, with clang's warnings as
# errors, and with classes exported and imported as it does. First it has to find a mistake that only this dialect has.
set -eu
. "$(dirname "$0")/common.sh"
cd "$root"

cmake --preset msvc-dialect >/dev/null
cmake --build build/msvc-dialect --target report_template_header >/dev/null
python3 scripts/check_msvc_dialect.py build/msvc-dialect
