#!/bin/bash
# Installs the Debian packages that the build needs and that are missing. Quiet when there are none.
set -eu

packages=(
  clang-format
  clang-tidy
  cmake
  g++-mingw-w64-x86-64
  git # lint asks it which files there are
  googletest
  libcli11-dev
  ninja-build
  nlohmann-json3-dev
  python3 # run-clang-tidy
  wine64
)

missing=()
for package in "${packages[@]}"; do
  [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
echo "Installing ${missing[*]}"
"${as_root[@]}" apt-get update -qq
DEBIAN_FRONTEND=noninteractive "${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
