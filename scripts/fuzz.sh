#!/bin/bash
# Builds the fuzz targets and runs each for so many seconds: scripts/fuzz.sh SECONDS [TARGET...]
# What a run learns stays in build/fuzz/corpus; a case that breaks something stays in build/fuzz/findings.
set -eu
. "$(dirname "$0")/common.sh"
cd "$root"

seconds=${1:?usage: scripts/fuzz.sh SECONDS [TARGET...]}
shift
if [ $# -gt 0 ]; then targets=("$@"); else mapfile -t targets < <(ls fuzz/corpus); fi

step "Build ${targets[*]}"
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz --target "${targets[@]}"

findings=build/fuzz/findings
mkdir -p "$findings"
export UBSAN_OPTIONS=print_stacktrace=1
summary=
broken=0
for target in "${targets[@]}"; do
  step "$target: $seconds s"
  corpus=build/fuzz/corpus/$target
  log=build/fuzz/$target.log
  mkdir -p "$corpus"
  verdict=clean
  build/fuzz/bin/"$target" -max_total_time="$seconds" -timeout=10 -print_final_stats=1 \
    -artifact_prefix="$findings/$target-" "$corpus" "fuzz/corpus/$target" >"$log" 2>&1 || {
    verdict=$(sed -n 's/.*Test unit written to //p' "$log")
    verdict="FINDING ${verdict:-, see $log}"
    broken=1
    grep -v '^#' "$log" | tail -n 60
  }
  executions=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
  summary+=$(printf '%-20s %12s executions  %s' "$target" "${executions:-0}" "$verdict")$'\n'
done

step "Executions"
printf '%s' "$summary"
exit "$broken"
