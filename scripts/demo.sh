#!/bin/bash
# Sets up, builds the library and watches it cut a machine off the network, on the emulated engine.
set -eu
. "$(dirname "$0")/common.sh"
cd "$root"

scripts/setup.sh

step "Build the Windows library, the engine emulator and the command-line tool"
cmake --preset windows >/dev/null
cmake --build --preset windows --target corvane_native_firewall fwpuclnt corvane_firewall_tool

step "Start Wine"
start_wine

step "Cut the machine off, list what the engine holds, and let it back on"
steps=(disable-internet status list enable-internet status list)
echo "corvane-firewall --engine emulated ${steps[*]}"
echo
scripts/wine.sh build/windows/bin/corvane-firewall.exe --engine emulated "${steps[@]}"
