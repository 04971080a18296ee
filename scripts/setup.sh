#!/bin/bash
# Installs the Debian packages that the build needs and that are missing. Quiet when there are none.
set -eu
. "$(dirname "$0")/common.sh"

packages=(
  chromium # the tests of the report's page
  clang # fuzz targets
  clang-format
  clang-tidy
  cmake
  g++
  g++-mingw-w64-x86-64
  git # lint asks it which files there are
  googletest
  libclang-rt-14-dev # its sanitizers and libFuzzer
  libcli11-dev
  libvalijson-dev # the tests of the tool's JSON
  llvm # llvm-dlltool, for the import library that Visual Studio takes
  mono-mcs # the C# example
  ninja-build
  nlohmann-json3-dev
  nodejs
  python3 # run-clang-tidy
  wine64
)
# Other packages of Node.js than Debian's bring npm with them and conflict with Debian's.
command -v npm >/dev/null || packages+=(npm)

install_packages "${packages[@]}"
