#!/bin/bash
# Writes three reports with the built tool under Wine, and tests them in headless Chromium. With --picture, it also renews
# the picture in the README.
set -eu
. "$(dirname "$0")/common.sh"
cd "$root"

mkdir -p build/page
export REPORT="$root/build/page/report.html" REPORT_OF_SEVERAL="$root/build/page/several.html"
export REPORT_OF_DUMP="$root/build/page/dump.html"
rm -f "$REPORT" "$REPORT_OF_SEVERAL" "$REPORT_OF_DUMP"

tool() { scripts/wine.sh build/windows/bin/corvane-firewall.exe "$@" >/dev/null; }
report() { tool --engine emulated "$@"; }
kill_switch=(disable-internet --app 'C:\windows\system32\notepad.exe')
report "${kill_switch[@]}" enable-dhcp report build/page/report.html
report --dns-app 'C:\windows\system32\svchost.exe' --block-app 'C:\unwanted.exe' \
  "${kill_switch[@]}" enable-dhcp \
  enable-leak-protection --server 198.51.100.7 --luid 1689399632855040 --allow 203.0.113.1 \
  enable-skein --luid 1689399632855041 --peer 100.64.0.1 report build/page/several.html
tool --engine tests/page/machine.xml report build/page/dump.html

cd tests/page
npm ci --loglevel=error --no-audit --no-fund
npm test
if [ "${1:-}" = --picture ]; then npm run --silent picture -- "$root/docs/report.png"; fi
