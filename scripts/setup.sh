#!/bin/bash
# Installs the Debian packages that the build needs and that are missing. Prints nothing if none is missing.
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
  git # lint gets the list of files from it
  googletest
  libclang-rt-14-dev # clang's sanitizers and libFuzzer
  libcli11-dev
  librapidxml-dev
  libvalijson-dev # the tests of the tool's JSON
  llvm # llvm-dlltool, for the import library for Visual Studio
  mono-mcs # the C# example
  mono-xbuild # the project that uses the NuGet package
  ninja-build
  nlohmann-json3-dev
  nodejs
  nuget
  openssl # a certificate to try signing with
  osslsigncode
  python3 # run-clang-tidy
  wine64
)
# Node.js packages from elsewhere have npm inside and conflict with Debian's package npm, so it is only installed if
# there is no npm.
command -v npm >/dev/null || packages+=(npm)

install_packages "${packages[@]}"
