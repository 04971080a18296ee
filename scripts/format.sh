#!/bin/bash
# Lays out every source as .clang-format and .prettierrc.json say.
set -eu
cd "$(dirname "$0")/.."
git ls-files --cached --others --exclude-standard '*.h' '*.c' '*.cpp' | xargs clang-format -i
cd tests/page
npm ci --loglevel=error --no-audit --no-fund
npm run --silent layout
