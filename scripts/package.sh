#!/bin/bash
# Makes what a release has, in build/release: a zip for hosts, a zip of the tools, the NuGet package, the bill of
# materials, and the SHA-256 sums of all. The same sources and packages always give the same bytes.
# With CERTIFICATE (a PKCS #12 file; the first line of PASSWORD_FILE is its password) the library, the tool and the
# emulator are signed, with TIMESTAMP_URL also stamped with the time by that server.
set -eu
. "$(dirname "$0")/common.sh"
cd "$root"

[ $# -eq 0 ] || { echo "usage: [CERTIFICATE=FILE.p12 PASSWORD_FILE=FILE [TIMESTAMP_URL=URL]] scripts/package.sh" >&2; exit 2; }
if [ -n "${CERTIFICATE:-}" ]; then
  for file in "$CERTIFICATE" "${PASSWORD_FILE:?has to name the file with the password of CERTIFICATE}"; do
    [ -r "$file" ] || { echo "$file cannot be read" >&2; exit 2; }
  done
fi

version=$(sed -n 's/^  VERSION \([0-9.]*\)$/\1/p' CMakeLists.txt)
# The newest entry of the change log has the date of the release, which is the time that everything in it gets.
read -r told date < <(sed -n 's/^## \[\([0-9.]*\)\] - \([0-9-]*\)$/\1 \2/p' CHANGELOG.md)
[ "$told" = "$version" ] || { echo "CMakeLists.txt has version $version, but CHANGELOG.md begins with $told" >&2; exit 1; }
SOURCE_DATE_EPOCH=$(date --utc --date "$date" +%s)
export SOURCE_DATE_EPOCH

scripts/setup.sh

step "Build the library, the tool and the emulator"
cmake --preset windows >/dev/null
cmake --build --preset windows --target corvane_native_firewall corvane_firewall_tool fwpuclnt msvc_import_library

release="$root/build/release"
work="$root/build/packing"
rm -rf "$release" "$work"
mkdir -p "$release" "$work"
for component in sdk tools nuget; do
  cmake --install build/windows --component "$component" --prefix "$work/$component" >/dev/null
done

library="$work/sdk/bin/Corvane.Native.Firewall.dll"
tool="$work/tools/bin/corvane-firewall.exe"
emulator="$work/tools/bin/emulator/fwpuclnt.dll"
if [ -n "${CERTIFICATE:-}" ]; then
  step "Sign"
  for file in "$library" "$tool" "$emulator"; do
    # Its own time would differ in each run.
    osslsigncode sign -pkcs12 "$CERTIFICATE" -readpass "$PASSWORD_FILE" -h sha256 -time "$SOURCE_DATE_EPOCH" \
      ${TIMESTAMP_URL:+-ts "$TIMESTAMP_URL"} -n Corvane.Native.Firewall -in "$file" -out "$work/signed"
    mv "$work/signed" "$file"
  done
  cp "$library" "$work/tools/bin"
  cp "$library" "$work/nuget/runtimes/win-x64/native"
fi

step "Pack"
name="Corvane.Native.Firewall"
python3 packaging/make_zip.py "$release/$name-$version-win-x64.zip" "$work/sdk"
python3 packaging/make_zip.py "$release/$name-$version-tools.zip" "$work/tools"
nuget pack "$work/nuget/$name.nuspec" -BasePath "$work/nuget" -OutputDirectory "$work" -NoPackageAnalysis
mkdir "$work/nupkg"
(cd "$work/nupkg" && cmake -E tar xf "$work/$name.$version.nupkg")
python3 packaging/settle_nuget_package.py "$work/nupkg"
python3 packaging/make_zip.py "$release/$name.$version.nupkg" "$work/nupkg"
python3 packaging/bill_of_materials.py "$version" "$library" "$tool" "$emulator" >"$release/$name-$version.cdx.json"
(cd "$release" && sha256sum -- * >"$work/SHA256SUMS" && mv "$work/SHA256SUMS" .)
cat "$release/SHA256SUMS"
