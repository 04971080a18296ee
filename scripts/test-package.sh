#!/bin/bash
# Installs what the windows preset has built and uses it: builds the examples and a program that names every member of
# the classes against the installed tree, runs them and the tool on the emulated engine, and builds the library again in
# another folder, to compare the bytes.
set -eu
. "$(dirname "$0")/common.sh"
cd "$root"

expectations="$root/tests/package"
package="$root/build/package"
sdk="$package/sdk"
tools="$package/tools"
rm -rf "$package"
mkdir -p "$package/run"

# same FILE: compares standard input with the file of this name in tests/package.
same() { tr -d '\r' | diff -u "$expectations/$1" - && echo "As expected: $1"; }
files() { (cd "$1" && find . -type f | LC_ALL=C sort); }

step "Install"
for component in sdk tools; do
  cmake --install build/windows --component "$component" --prefix "$package/$component" >/dev/null
  files "$package/$component" | same "$component-files.txt"
done
cmake --install build/windows --prefix "$package/whole" >/dev/null
LC_ALL=C sort -u "$expectations"/{sdk,tools}-files.txt | diff -u - <(files "$package/whole")
x86_64-w64-mingw32-objdump -h "$sdk/bin/Corvane.Native.Firewall.dll" | grep -q '\.gnu_debuglink'
x86_64-w64-mingw32-objdump -h "$sdk/bin/Corvane.Native.Firewall.dll.debug" | grep -q '\.debug_info'

step "Follow the links of the installed documents"
for tree in "$sdk" "$tools"; do
  (
    cd "$tree/doc"
    # Only links to files, not those to a heading of the same document or to the web.
    grep -oE '\]\([^)#:]+' *.md | while IFS=: read -r document link; do
      [ -e "${link#](}" ] || { echo "$document points to ${link#](}, which is not installed" >&2; exit 1; }
    done
  )
done

step "Compare the exported names"
scripts/exported-names.sh "$sdk/bin/Corvane.Native.Firewall.dll" | same exported-names.txt

step "Compile the C interface by itself"
header="$sdk/include/corvane/native_firewall.h"
warnings=(-Wall -Wextra -Wpedantic -Werror -fsyntax-only)
x86_64-w64-mingw32-gcc-posix -std=c11 "${warnings[@]}" -x c "$header"
x86_64-w64-mingw32-g++-posix -std=c++20 "${warnings[@]}" -x c++ "$header"

step "Build a program that names every public member of the classes"
gxx=(x86_64-w64-mingw32-g++-posix -std=c++20 "${warnings[@]:0:4}")
"${gxx[@]}" -I "$sdk/include/WfpFirewall" -c tests/package/EveryMember.cpp -o "$package/every_member.o"
"${gxx[@]}" -static "$package/every_member.o" "$sdk/lib/libCorvane.Native.Firewall.dll.a" \
  -o "$package/run/every_member.exe"
# It must import everything that the library exports of the classes, except private members, and type information, of
# which every client has its own copy.
x86_64-w64-mingw32-nm -u "$package/every_member.o" | sed -n 's/.* U \(__imp_\)\?//p' | LC_ALL=C sort -u |
  LC_ALL=C comm -13 - "$expectations/exported-names.txt" | grep '^_Z' | grep -v '^_ZTI' | c++filt |
  same private-members.txt

step "Build the examples against the installed tree"
cmake -S "$sdk/examples" -B "$package/examples" -G Ninja \
  -DCMAKE_TOOLCHAIN_FILE="$root/cmake/toolchain-mingw-w64.cmake" \
  -DCorvaneNativeFirewall_DIR="$sdk/lib/cmake/CorvaneNativeFirewall" \
  -DCMAKE_{C,CXX}_FLAGS="-Wall -Wextra -Wpedantic -Werror" -DCMAKE_RUNTIME_OUTPUT_DIRECTORY="$package/run" >/dev/null
cmake --build "$package/examples"
x86_64-w64-mingw32-gcc-posix -std=c11 -I "$sdk/include" "$sdk/examples/c/host.c" "$sdk/lib/Corvane.Native.Firewall.lib" \
  -o "$package/run/host_in_c_for_visual_studio.exe"

x86_64-w64-mingw32-gcc-posix -std=c11 "${warnings[@]:0:4}" -I "$tools/include" tests/package/emulator_client.c \
  "$tools/lib/emulator/libfwpuclnt.dll.a" -o "$package/run/emulator_client.exe"

step "Run hosts without the library, and be told so"
start_wine
for host in host_in_c loading_host_in_c; do
  { scripts/wine.sh "$package/run/$host.exe" 2>&1 || true; } | grep -E 'Corvane\.Native\.Firewall\.dll .*(not found|not there)'
done

step "Run them on the emulated engine"
# In the folder of a program, and with this setting for Wine, the emulator is loaded instead of Wine's own library.
cp "$sdk/bin/Corvane.Native.Firewall.dll" "$tools/bin/emulator/fwpuclnt.dll" "$package/run"
export WINEDLLOVERRIDES="fwpuclnt=n;mscoree,mshtml="
run() { scripts/wine.sh "$package/run/$1.exe" >"$package/run/$1.txt" 2>/dev/null; }
for host in host_in_c host_in_c_for_visual_studio; do
  run "$host"
  same host_in_c.txt <"$package/run/$host.txt"
done
for program in loading_host_in_c host_in_cpp own_rule_set every_member emulator_client; do
  run "$program"
  same "$program.txt" <"$package/run/$program.txt"
done

step "Run the tool from where it is installed"
env -u WINEDLLOVERRIDES scripts/wine.sh "$tools/bin/corvane-firewall.exe" --engine emulated \
  disable-internet enable-dhcp status 2>/dev/null | same tool.txt

step "Build the library in another folder, and get the same bytes"
object_sums() {
  (cd "$1/src" && find . -name '*.obj' -o -name '*.res' | sort | xargs sha256sum)
}
mkdir "$package/elsewhere"
tar --exclude=./build --exclude=./.git -cf - . | tar -xf - -C "$package/elsewhere"
(
  cd "$package/elsewhere"
  cmake --preset windows -DBUILD_TESTING=OFF >/dev/null
  cmake --build --preset windows --target corvane_native_firewall
)
for file in Corvane.Native.Firewall.dll Corvane.Native.Firewall.dll.debug; do
  if ! cmp "build/windows/bin/$file" "$package/elsewhere/build/windows/bin/$file"; then
    echo "Of what they are linked from, this differs:" >&2
    diff <(object_sums build/windows) <(object_sums "$package/elsewhere/build/windows") >&2 || true
    exit 1
  fi
  echo "The same: $file"
done
