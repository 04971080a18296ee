#!/bin/sh
# Runs a Windows program under Wine, in a prefix of the build tree's own.
root=$(cd "$(dirname "$0")/.." && pwd)
: "${WINEPREFIX:=$root/build/wine}"
# Of Wine's own messages just those that name the library which a program misses; it ends with 53 then.
: "${WINEDEBUG:=-all,err+module}"
# Neither .NET nor a browser engine is needed; without them a new prefix is ready sooner.
: "${WINEDLLOVERRIDES:=mscoree,mshtml=}"
export WINEPREFIX WINEDEBUG WINEDLLOVERRIDES
mkdir -p "$WINEPREFIX"
exec /usr/lib/wine/wine64 "$@"
