#!/usr/bin/env bash
# Times `zarvi-cli info` on a small data file against a minimal C program that opens the
# same file and prints its root attributes, runs alternating, and prints the medians, the
# ratio (target: at most 2) and the number of shared libraries each loads.
# Usage: bench/startup/run-startup-bench.sh [BUILD_DIR] [RUNS]   (needs zarvi-cli and h5_root_attributes)
set -euo pipefail
build=${1:-build}
runs=${2:-30}
cli="$build/cli/zarvi-cli"
floor="$build/bench/startup/h5_root_attributes"
for program in "$cli" "$floor"; do
  [ -x "$program" ] || { echo "missing $program; build zarvi-cli and h5_root_attributes first" >&2; exit 2; }
done

work=$(mktemp -d "${TMPDIR:-/tmp}/zarvi-startup-bench.XXXXXX")
trap 'rm -rf "$work"' EXIT
# A small data file: the root attributes and one short signal.
printf 'Time,Signal\n0,1\n0.1,2\n0.2,3\n' > "$work/small.csv"
"$cli" convert --csv "$work/small.csv" --time-column 1 --device Rig --into "$work/small.orvel" > /dev/null

# Nanoseconds one run of the command takes, its output discarded.
nanoseconds() {
  local start end
  start=$(date +%s%N)
  "$@" > /dev/null
  end=$(date +%s%N)
  echo $((end - start))
}
median() { sort -n | awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }

# Warm the page cache for both programs first.
"$cli" info "$work/small.orvel" > /dev/null
"$floor" "$work/small.orvel" > /dev/null
: > "$work/cli.txt"
: > "$work/floor.txt"
for ((k = 0; k < runs; ++k)); do
  nanoseconds "$cli" info "$work/small.orvel" >> "$work/cli.txt"
  nanoseconds "$floor" "$work/small.orvel" >> "$work/floor.txt"
done
cli_ns=$(median < "$work/cli.txt")
floor_ns=$(median < "$work/floor.txt")
# Shared objects the dynamic loader maps for one run.
libraries() { LD_DEBUG=files "$@" 2>&1 > /dev/null | grep -c 'generating link map'; }
printf 'zarvi-cli info:        %8.2f ms median of %d, %s shared objects\n' \
  "$(awk -v n="$cli_ns" 'BEGIN { print n / 1e6 }')" "$runs" "$(libraries "$cli" info "$work/small.orvel")"
printf 'HDF5 C program:        %8.2f ms median of %d, %s shared objects\n' \
  "$(awk -v n="$floor_ns" 'BEGIN { print n / 1e6 }')" "$runs" "$(libraries "$floor" "$work/small.orvel")"
printf 'ratio (target <= 2):   %8.2f\n' "$(awk -v a="$cli_ns" -v b="$floor_ns" 'BEGIN { print a / b }')"
