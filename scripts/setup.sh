#!/bin/bash
# Installs the Debian packages that the build needs and that are missing. Quiet when there are none.
set -eu
. "$(dirname "$0")/common.sh"

packages=(
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
  llvm # llvm-dlltool, for the import library that Visual Studio takes
  mono-mcs # the C# example
  ninja-build
  nlohmann-json3-dev
  python3 # run-clang-tidy
  wine64
)

install_packages "${packages[@]}"
