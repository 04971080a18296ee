#!/bin/bash
# Builds the fuzz targets and runs each for SECONDS: scripts/fuzz.sh SECONDS [TARGET...]
# New cases are kept in build/fuzz/corpus for later runs, and cases that fail in build/fuzz/findings.
set -eu
. "$(dirname "$0")/common.sh"
cd "$root"

seconds=${1:?usage: scripts/fuzz.sh SECONDS [TARGET...]}
shift
if [ $# -gt 0 ]; then targets=("$@"); else mapfile -t targets < <(ls fuzz/corpus); fi

step "Build ${targets[*]}"
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz --target "${targets[@]}"

export UBSAN_OPTIONS=print_stacktrace=1 seconds
mkdir -p build/fuzz/findings

fuzz() { # fuzz TARGET: writes a line to its summary
  local corpus=build/fuzz/corpus/$1 log=build/fuzz/$1.log verdict=clean executions
  mkdir -p "$corpus"
  build/fuzz/bin/"$1" -max_total_time="$seconds" -timeout=10 -print_final_stats=1 \
    -artifact_prefix="build/fuzz/findings/$1-" "$corpus" "fuzz/corpus/$1" >"$log" 2>&1 || {
    verdict=$(sed -n 's/.*Test unit written to //p' "$log")
    verdict="FINDING ${verdict:-, see $log}"
    grep -v '^#' "$log" | tail -n 60
  }
  executions=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
  printf '%-20s %12s executions  %s\n' "$1" "${executions:-0}" "$verdict" >"build/fuzz/summary-$1"
}
export -f fuzz

step "$seconds s each"
printf '%s\n' "${targets[@]}" | xargs -P "$(nproc)" -I{} bash -c 'fuzz {}'

step "Executions"
cat "${targets[@]/#/build/fuzz/summary-}"
! grep -q FINDING "${targets[@]/#/build/fuzz/summary-}"
