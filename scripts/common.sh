# For the other scripts: where things are, and a Wine prefix for a run.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX="$root/build/wine"

step() { printf '\n== %s\n' "$*"; }

# A prefix without devices that an earlier run left. Wine's services start here, with their output put
# away, and stay: started by a program whose output somebody reads, they would keep that reader waiting.
start_wine() {
  stop_wine
  rm -rf "$WINEPREFIX"
  mkdir -p "$WINEPREFIX"
  trap stop_wine EXIT
  /usr/lib/wine/wineserver -p >/dev/null 2>&1
  "$root/scripts/wine.sh" wineboot --init >/dev/null 2>&1
}

stop_wine() { /usr/lib/wine/wineserver -k >/dev/null 2>&1 || true; }
