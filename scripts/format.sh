#!/bin/bash
# Lays out every source as .clang-format says.
set -eu
cd "$(dirname "$0")/.."
git ls-files --cached --others --exclude-standard '*.h' '*.c' '*.cpp' | xargs clang-format -i
