#!/bin/bash
# Tries the tool on the dumps of a folder: ./scripts/check-dumps.sh FOLDER
# Prints a line for each: definite verdicts of 10,000 fixed connections, time and memory of map and lint, and the size
# of one explanation. Fails when a dump cannot be read.
set -eu
[ $# = 1 ] && [ -d "$1" ] || { echo "usage: $0 FOLDER, which has dumps of netsh wfp show state" >&2; exit 2; }
bin="$(cd "$(dirname "$0")/.." && pwd)/build/native-release/bin"
for program in corvane-firewall policy-sample; do
  [ -x "$bin/$program" ] || { echo "$bin/$program is missing: build the preset native-release" >&2; exit 2; }
done

# Seconds and megabytes of a step, or "failed".
measure() {
  python3 - "$@" <<'PYTHON'
import resource, subprocess, sys, time
begin = time.monotonic()
status = subprocess.run(sys.argv[1:], stdout=subprocess.DEVNULL).returncode
seconds = time.monotonic() - begin
megabytes = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss / 1024
print("failed" if status else f"{seconds:.2f} s {megabytes:.0f} MB")
PYTHON
}

shopt -s nullglob
dumps=("$1"/*.xml)
[ ${#dumps[@]} -gt 0 ] || { echo "$1 has no .xml files" >&2; exit 1; }
failed=0
for dump in "${dumps[@]}"; do
  if ! definite=$("$bin/policy-sample" "$dump"); then
    echo "$(basename "$dump"): cannot be read"
    failed=1
    continue
  fi
  map=$(measure "$bin/corvane-firewall" --engine "$dump" map)
  lint=$(measure "$bin/corvane-firewall" --engine "$dump" lint)
  size=$("$bin/corvane-firewall" --engine "$dump" explain --profile public --remote 1.1.1.1 | wc -c)
  echo "$(basename "$dump"): $definite; map $map; lint $lint; explanation $size bytes"
done
exit $failed
