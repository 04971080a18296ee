#!/bin/bash
# Writes reports with the built tool under Wine, of fresh engines and of a machine with 1,200 filters, and tests them in
# headless Chromium. With --picture, it also renews the picture in the README.
set -eu
. "$(dirname "$0")/common.sh"
cd "$root"

mkdir -p build/page
export REPORTS="$root/build/page"
rm -f build/page/*.html
node tests/page/machine.js build/page/machine.xml

tool() { scripts/wine.sh build/windows/bin/corvane-firewall.exe "$@" >/dev/null; }
kill_switch=(disable-internet --app 'C:\windows\system32\notepad.exe')
write_pair() { # write_pair NAME [--start FILE]
  local name=$1
  shift
  tool --engine emulated "$@" "${kill_switch[@]}" enable-dhcp report "build/page/$name.html"
  tool --engine emulated "$@" --dns-app 'C:\windows\system32\svchost.exe' --block-app 'C:\unwanted.exe' \
    "${kill_switch[@]}" enable-dhcp \
    enable-leak-protection --server 198.51.100.7 --luid 1689399632855040 --allow 203.0.113.1 \
    enable-skein --luid 1689399632855041 --peer 100.64.0.1 report "build/page/$name-several.html"
}
write_pair fresh
write_pair large --start build/page/machine.xml
tool --engine tests/page/machine.xml report build/page/dump.html
tool --engine build/page/machine.xml report build/page/large-dump.html
tool --engine build/page/machine.xml report build/page/large-service.html --as 'service Dnscache' --profile public

cd tests/page
npm ci --loglevel=error --no-audit --no-fund
npm test
if [ "${1:-}" = --picture ]; then npm run --silent picture -- "$root/docs/report.png"; fi
