#!/usr/bin/env bash
# Builds the fuzz targets with clang and libFuzzer in their own folder and runs each
# for FUZZ_SECONDS (default 60). The corpus of each target grows across runs in
# BUILD/corpus/<target>; it starts from seeds our own writers make. Inputs that crash,
# hang or run out of memory land in BUILD/findings/<target>/; the script ends with 1
# when a run left any. Usage: run-fuzz.sh [BUILD] [TARGET...]
set -euo pipefail
cd "$(dirname "$0")/.."

build=${1:-build-fuzz}
shift || true
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=(tiff csv xlsx video datafile)
seconds=${FUZZ_SECONDS:-60}
jobs=${JOBS:-$(nproc)}

bash scripts/install-deps.sh
bash scripts/install-fuzz-deps.sh
# -O1 with line tables only: quick to build, still fast to run, and stack traces name lines.
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O1 -gline-tables-only" -DCMAKE_C_FLAGS_RELWITHDEBINFO="-O1 -gline-tables-only" \
  -DCMAKE_C_COMPILER=clang-14 -DCMAKE_CXX_COMPILER=clang++-14 \
  -DZARVI_FUZZ=ON -DZARVI_BUILD_GUI=OFF -DZARVI_BUILD_BENCH=OFF >/dev/null
cmake --build "$build" -j "$jobs" --target zarvi-fuzz-seeds "${targets[@]/#/fuzz_}"

seeds="$build/seeds"
rm -rf "$seeds"
"$build/tests/fuzz/zarvi-fuzz-seeds" "$seeds"

export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=0:allocator_may_return_null=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1}
failed=0
for target in "${targets[@]}"; do
  corpus="$build/corpus/$target"
  findings="$build/findings/$target"
  log="$build/logs/$target.log"
  mkdir -p "$corpus" "$findings" "$(dirname "$log")"
  before=$(find "$findings" -type f | wc -l)
  # The datafile target forks a child per input, and a fork copies the page tables of all
  # the memory the sanitizer holds back from reuse to catch use after free: a smaller
  # quarantine (the default is 256 MB) makes the target run nearly twice as fast. Its child
  # reads through HDF5, which allocates whatever size a damaged file declares; libFuzzer
  # would end the child on an allocation of -rss_limit_mb or more as if it were a finding,
  # so the sanitizer refuses those first (malloc returns null, as the library expects of a
  # failed allocation, and new still reports them).
  sanitizer=$ASAN_OPTIONS
  [ "$target" != datafile ] || sanitizer="$sanitizer:quarantine_size_mb=32:max_allocation_size_mb=2047"
  # Fork mode goes on past a finding, so each target gets its whole time; the inputs
  # found are saved all the same.
  ASAN_OPTIONS=$sanitizer "$build/tests/fuzz/fuzz_$target" "$corpus" "$seeds/$target" \
    -fork=1 -ignore_crashes=1 -ignore_timeouts=1 -ignore_ooms=1 \
    -max_total_time="$seconds" -timeout=20 -rss_limit_mb=2048 -max_len=65536 \
    -artifact_prefix="$findings/" >"$log" 2>&1 || true
  after=$(find "$findings" -type f | wc -l)
  # The last status line of fork mode: "#<runs>: cov: <edges> ft: <features> ...".
  status=$(grep -E '^#[0-9]+: cov:' "$log" | tail -1 | awk '{print "runs " substr($1, 2, length($1) - 2) ", coverage " $3}')
  echo "fuzz_$target: ${seconds}s, ${status:-no status}, corpus $(find "$corpus" -type f | wc -l) inputs, new findings $((after - before)) (log $log)"
  if [ "$after" -gt "$before" ]; then
    failed=1
    ls -t "$findings" | head -n $((after - before))
  fi
done
exit $failed
