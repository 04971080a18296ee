#!/bin/bash
# Makes a release twice, compares the sums, and uses what it has: reads the zips and the NuGet package back, builds a C#
# host from the package and runs it on a library that records its calls, checks the bill of materials against the files,
# and signs with a certificate of its own.
set -eu
. "$(dirname "$0")/common.sh"
cd "$root"

expectations="$root/tests/package"
work="$root/build/release-test"
release="$root/build/release"
rm -rf "$work"
mkdir -p "$work"

same() { tr -d '\r' | diff -u "$expectations/$1" - && echo "As expected: $1"; }
files() { (cd "$1" && find . -type f | LC_ALL=C sort); }

step "Make a release twice, and get the same sums"
scripts/package.sh >/dev/null
cp "$release/SHA256SUMS" "$work"
scripts/package.sh >/dev/null
diff "$work/SHA256SUMS" "$release/SHA256SUMS"
(cd "$release" && sha256sum --check --strict SHA256SUMS)

step "Read the zips back"
for zip in "$release"/*.zip; do
  mkdir "$work/$(basename "$zip" .zip)"
  (cd "$work/$(basename "$zip" .zip)" && cmake -E tar xf "$zip")
done
sdk=$(echo "$work"/*-win-x64)
tools=$(echo "$work"/*-tools)
files "$sdk" | same sdk-files.txt
files "$tools" | same tools-files.txt
cmp "$sdk/bin/Corvane.Native.Firewall.dll" "$tools/bin/Corvane.Native.Firewall.dll"

step "Install the NuGet package from a folder, build a C# host with it, and run that on a library that records its calls"
cp -r "$expectations/nuget_consumer" "$work/consumer"
cp "$sdk/examples/csharp/Host.cs" "$work/consumer"
(
  cd "$work/consumer"
  # HOME: no package of an earlier run.
  HOME=$work nuget install Corvane.Native.Firewall -Source "$release" -ExcludeVersion -OutputDirectory packages
  (cd packages/Corvane.Native.Firewall && find . -type f ! -name '*.nupkg' | LC_ALL=C sort) | same nuget-files.txt
  xbuild /nologo /verbosity:minimal Consumer.csproj
  cmp bin/Corvane.Native.Firewall.dll "$sdk/bin/Corvane.Native.Firewall.dll"
)
gcc -std=c11 -Wall -Wextra -Wpedantic -Werror -shared -fPIC -fshort-wchar -D__stdcall= -I include -I sdk_subset \
  tests/package/RecordingLibrary.c -o "$work/libCorvane.Native.Firewall.so"
# Only here the DLL of Windows must not be found first.
rm "$work/consumer/bin/Corvane.Native.Firewall.dll"
{ LD_LIBRARY_PATH="$work" mono "$work/consumer/bin/Consumer.exe" || echo "exit code $?"; } | same host_in_csharp.txt

step "Find each function that the C# class imports in the packed library"
scripts/exported-names.sh "$sdk/bin/Corvane.Native.Firewall.dll" >"$work/exported-names.txt"
grep -oP 'static extern .*? \K\w+(?=\()' "$work/consumer/packages/Corvane.Native.Firewall/cs/NativeFirewall.cs" |
  LC_ALL=C sort >"$work/imported-names.txt"
[ "$(wc -l <"$work/imported-names.txt")" = 16 ]
LC_ALL=C comm -23 "$work/imported-names.txt" "$work/exported-names.txt" | diff /dev/null -

step "Compare the bill of materials with the files"
python3 - "$release"/*.cdx.json "$sdk/bin/Corvane.Native.Firewall.dll" "$tools/bin/corvane-firewall.exe" \
  "$tools/bin/emulator/fwpuclnt.dll" <<'END'
import hashlib, json, pathlib, sys
bill = json.load(open(sys.argv[1]))
told = {part["name"]: part for part in bill["components"]}
for path in map(pathlib.Path, sys.argv[2:]):
    sum = hashlib.sha256(path.read_bytes()).hexdigest()
    assert told[path.name]["hashes"] == [{"alg": "SHA-256", "content": sum}], path
parts = {entry["ref"]: entry["dependsOn"] for entry in bill["dependencies"]}
names = {part["bom-ref"]: part["name"] for part in bill["components"]}
runtime = ["libstdc++", "libgcc", "mingw-w64 and winpthreads"]
assert [names[part] for part in parts["Corvane.Native.Firewall.dll"]] == runtime
assert [names[part] for part in parts["fwpuclnt.dll"]] == runtime
assert [names[part] for part in parts["corvane-firewall.exe"]] == runtime + ["CLI11", "JSON for Modern C++", "RapidXML"]
assert all(part["version"] and part.get("licenses", True) for part in bill["components"])
END

step "Sign with a certificate of our own, and verify"
openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj "/CN=A test" -addext extendedKeyUsage=codeSigning \
  -keyout "$work/key.pem" -out "$work/certificate.pem" 2>/dev/null
echo "a password" >"$work/password"
openssl pkcs12 -export -in "$work/certificate.pem" -inkey "$work/key.pem" -out "$work/certificate.p12" \
  -passout "file:$work/password"
CERTIFICATE="$work/certificate.p12" PASSWORD_FILE="$work/password" scripts/package.sh >/dev/null
verify() { osslsigncode verify -CAfile "$work/certificate.pem" "$1" >/dev/null 2>&1; }
packing="$root/build/packing"
for file in sdk/bin/Corvane.Native.Firewall.dll tools/bin/{Corvane.Native.Firewall.dll,corvane-firewall.exe} \
  tools/bin/emulator/fwpuclnt.dll nupkg/runtimes/win-x64/native/Corvane.Native.Firewall.dll; do
  verify "$packing/$file" && echo "Verified: $file"
done
# One byte of a text within the file.
sed 's/Corvane VPN/Corvane VPM/; s/FwpmEngineOpen0/FwpmEngineOpen1/' "$packing/sdk/bin/Corvane.Native.Firewall.dll" >"$work/changed.dll"
! cmp -s "$packing/sdk/bin/Corvane.Native.Firewall.dll" "$work/changed.dll"
! verify "$work/changed.dll"

step "Be told what is wrong"
refuse() { grep -q "$1" && echo "Told: $1"; }
{ CERTIFICATE=/nowhere.p12 PASSWORD_FILE=/nowhere scripts/package.sh 2>&1 || true; } | refuse '/nowhere.p12 cannot be read'
{ CERTIFICATE="$work/certificate.p12" scripts/package.sh 2>&1 || true; } | refuse 'PASSWORD_FILE: has to name'
{ scripts/package.sh --sign 2>&1 || true; } | refuse 'usage: '

# What is left in build/release is the release without a signature.
scripts/package.sh >/dev/null
