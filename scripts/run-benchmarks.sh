#!/usr/bin/env bash
# Runs every benchmark program of the build; each prints its own ratio against
# a baseline measured in the same run.
set -euo pipefail
build=${1:-build}
for program in "$build"/bench/*/bench_*; do
  [ -x "$program" ] || continue
  echo "== $(basename "$program")"
  "$program"
done
