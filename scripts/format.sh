#!/bin/bash
# Formats every source by .clang-format and .prettierrc.json.
set -eu
cd "$(dirname "$0")/.."
git ls-files --cached --others --exclude-standard '*.h' '*.c' '*.cpp' | xargs clang-format -i
cd tests/page
npm ci --loglevel=error --no-audit --no-fund
npm run --silent layout
