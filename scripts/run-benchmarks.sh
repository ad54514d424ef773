#!/usr/bin/env bash
# Runs every benchmark of the build; each prints its own ratio against a
# baseline measured in the same run. Benchmarks that drive the command-line
# tool over large files are scripts beside their sources (bench/*/run-*.sh).
set -euo pipefail
build=${1:-build}
for program in "$build"/bench/*/bench_*; do
  # The build folders of the programs (bench_*_autogen) match the pattern too.
  [ -f "$program" ] && [ -x "$program" ] || continue
  echo "== $(basename "$program")"
  "$program"
done
for script in bench/*/run-*.sh; do
  [ -f "$script" ] || continue
  echo "== $(basename "$script")"
  bash "$script" "$build"
done
