#!/bin/bash
# Builds and runs the benchmarks, all or those named: scripts/benchmark.sh [PROGRAM...]
set -eu
. "$(dirname "$0")/common.sh"
cd "$root"

install_packages libbenchmark-dev

step "Build"
cmake --preset native-release -DCORVANE_BENCHMARKS=ON >/dev/null
cmake --build --preset native-release --target benchmarks

if [ $# -gt 0 ]; then programs=("$@"); else mapfile -t programs < <(cd build/native-release/bin && ls *_benchmark); fi
for program in "${programs[@]}"; do
  step "$program"
  build/native-release/bin/"$program"
done
