#!/bin/bash
# Lists the exports of the built library, C functions and members of classes, by their names for the linker. After an
# intended change, this renews the list that scripts/test-package.sh compares with:
#   scripts/exported-names.sh > tests/package/exported-names.txt
set -eu
cd "$(dirname "$0")/.."
x86_64-w64-mingw32-objdump -p "${1:-build/windows/bin/Corvane.Native.Firewall.dll}" |
  sed -n '/^\[Ordinal\/Name Pointer\] Table/,/^$/s/.* //p' | tail -n +2 | LC_ALL=C sort
