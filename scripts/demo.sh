#!/bin/bash
# Sets up, builds the library, and shows on the emulated engine how it cuts a machine off the network and keeps its
# traffic in a tunnel. Then reads what the engine holds without Windows.
set -eu
. "$(dirname "$0")/common.sh"
cd "$root"

scripts/setup.sh

step "Build the Windows library, the engine emulator and the command-line tool"
cmake --preset windows >/dev/null
cmake --build --preset windows --target corvane_native_firewall fwpuclnt corvane_firewall_tool

step "Start Wine"
start_wine

run_tool() {
  echo "corvane-firewall --engine emulated $*"
  echo
  scripts/wine.sh build/windows/bin/corvane-firewall.exe --engine emulated "$@"
}

step "Cut the machine off, list what the engine holds, and let it back on"
run_tool disable-internet status list enable-internet status list

step "Keep traffic in a tunnel, permit other addresses than before, and let it out again"
enable=(enable-leak-protection --server 198.51.100.7 --luid 1689399632855040)
run_tool --dns-app 'C:\windows\system32\svchost.exe' --block-app 'C:\unwanted.exe' \
  "${enable[@]}" --allow 192.0.2.1 status list \
  "${enable[@]}" --allow 203.0.113.1 --allow 203.0.113.2 list \
  disable-leak-protection status list

step "Explain a connection, and write all that gets through as a page"
mkdir -p build/demo
run_tool --dns-app 'C:\windows\system32\svchost.exe' --block-app 'C:\unwanted.exe' \
  disable-internet --app 'C:\windows\system32\notepad.exe' enable-dhcp "${enable[@]}" --allow 203.0.113.1 \
  enable-skein --luid 1689399632855041 --peer 100.64.0.1 \
  explain --remote 1.1.1.1:443 report build/demo/report.html export build/demo/machine.xml
echo
echo "The page is build/demo/report.html: open it in a browser."

step "Build the tool for this system, and ask it about that machine from its dump alone"
cmake --preset native-release >/dev/null
cmake --build --preset native-release --target corvane_firewall_tool
question=(--engine build/demo/machine.xml explain --remote 1.1.1.1:53 --protocol udp)
echo "corvane-firewall ${question[*]}"
echo
build/native-release/bin/corvane-firewall "${question[@]}"
