#!/bin/sh
# Runs a Windows program under Wine, in a prefix inside the build tree.
root=$(cd "$(dirname "$0")/.." && pwd)
: "${WINEPREFIX:=$root/build/wine}"
# Shows only those messages of Wine that name a missing library; the program then ends with code 53.
: "${WINEDEBUG:=-all,err+module}"
# No test needs .NET or a browser engine; without them a new prefix is ready sooner.
: "${WINEDLLOVERRIDES:=mscoree,mshtml=}"
export WINEPREFIX WINEDEBUG WINEDLLOVERRIDES
mkdir -p "$WINEPREFIX"
exec /usr/lib/wine/wine64 "$@"
