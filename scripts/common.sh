# Included by the other scripts: paths, installation of packages, and a Wine prefix for a run.
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX="$root/build/wine"
# Without it Wine cannot use file names with non-ASCII characters, nor Mono such texts.
export LC_ALL=C.UTF-8

step() { printf '\n== %s\n' "$*"; }

# Installs the Debian packages that are missing. Prints nothing if none is missing.
install_packages() {
  local missing=() as_root=() package
  for package; do
    [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
  done
  [ ${#missing[@]} -gt 0 ] || return 0
  [ "$(id -u)" -eq 0 ] || as_root=(sudo)
  echo "Installing ${missing[*]}"
  "${as_root[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# Makes a new prefix, without devices that an earlier run left. It also starts Wine's services, without output, and
# keeps them running: if a test program started them, they would keep its output pipe open and its reader waiting.
start_wine() {
  stop_wine
  rm -rf "$WINEPREFIX"
  mkdir -p "$WINEPREFIX"
  trap stop_wine EXIT
  /usr/lib/wine/wineserver -p >/dev/null 2>&1
  "$root/scripts/wine.sh" wineboot --init >/dev/null 2>&1
}

stop_wine() { /usr/lib/wine/wineserver -k >/dev/null 2>&1 || true; }
