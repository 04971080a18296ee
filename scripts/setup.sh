#!/bin/bash
# Installs the Debian packages that the build needs and that are missing. Prints nothing if none is missing.
set -eu
. "$(dirname "$0")/common.sh"

packages=(
  chromium # the tests of the report's page
  clang # fuzz targets
  clang-19 # reads the sources as Visual Studio does
  clang-format
  clang-tidy
  clang-tools-19 # clang-cl
  cmake
  g++
  g++-mingw-w64-x86-64
  git # lint gets the list of files from it
  googletest
  libclang-rt-14-dev # clang's sanitizers and libFuzzer
  libc++-19-dev # the standard library for that: GCC's knows no Visual Studio
  libcli11-dev
  librapidxml-dev
  libvalijson-dev # the tests of the tool's JSON
  lld-19 # CMake asks for a linker and the tools of llvm-19, though that build links nothing
  llvm # llvm-dlltool, for the import library for Visual Studio
  llvm-19
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
