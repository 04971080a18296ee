#!/bin/bash
# Builds and runs the benchmarks, all or those named: scripts/benchmark.sh [PROGRAM...]
# Or compares what a filter costs with an earlier commit, natively and under Wine: scripts/benchmark.sh compare COMMIT
set -eu
. "$(dirname "$0")/common.sh"
cd "$root"

install_packages libbenchmark-dev

if [ "${1:-}" = compare ]; then
  commit=$(git rev-parse --verify --quiet "${2:-}^{commit}") || {
    echo "compare needs a commit, such as main; '${2:-}' is none" >&2
    exit 1
  }
  before="$root/build/compare/$commit"
  step "Build filter_cost now, and with the sources of $commit"
  mkdir -p "$before"
  git archive "$commit" | tar -xf - -C "$before"
  # The same program, on the sources of then.
  rm -rf "$before/benchmarks"
  cp -r benchmarks "$before"
  for tree in "$before" "$root"; do
    for preset in native-release windows; do
      (
        cd "$tree"
        cmake --preset "$preset" -DCORVANE_BENCHMARKS=ON >/dev/null
        cmake --build --preset "$preset" --target filter_cost
      )
    done
  done
  step "Compare natively"
  benchmarks/compare.py {"$before","$root"}/build/native-release/bin/filter_cost
  step "Compare under Wine"
  start_wine
  benchmarks/compare.py "scripts/wine.sh $before/build/windows/bin/filter_cost.exe" \
    "scripts/wine.sh build/windows/bin/filter_cost.exe"
  exit 0
fi

step "Build"
cmake --preset native-release -DCORVANE_BENCHMARKS=ON >/dev/null
cmake --build --preset native-release --target benchmarks

if [ $# -gt 0 ]; then programs=("$@"); else mapfile -t programs < <(cd build/native-release/bin && ls *_benchmark); fi
for program in "${programs[@]}"; do
  step "$program"
  build/native-release/bin/"$program"
done
