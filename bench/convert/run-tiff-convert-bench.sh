#!/usr/bin/env bash
# Converts a 2 GB 16-bit TIFF stack (600 x 600 x 2800 frames) into a data file through
# `zarvi-cli convert` and reports the peak memory of the conversion and its throughput,
# with the ratio to a plain `cp` of the same file measured in the same run.
# Usage: bench/convert/run-tiff-convert-bench.sh [BUILD_DIR]   (needs make_tiff_stack and zarvi-cli built)
set -euo pipefail
build=${1:-build}
cli="$build/cli/zarvi-cli"
maker="$build/bench/convert/make_tiff_stack"
for program in "$cli" "$maker"; do
  [ -x "$program" ] || { echo "missing $program; build zarvi-cli and make_tiff_stack first" >&2; exit 2; }
done

work=$(mktemp -d "${TMPDIR:-/tmp}/zarvi-convert-bench.XXXXXX")
trap 'rm -rf "$work"' EXIT
width=600 height=600 frames=2800
# The stack, its copy and the data file each take the stack's size: ask for 6 GB.
need_kb=$((6 * 1024 * 1024))
free_kb=$(df -Pk "$work" | awk 'NR == 2 { print $4 }')
if (( free_kb < need_kb )); then
  frames=$(( frames * free_kb / need_kb ))
  echo "note: only $((free_kb / 1024)) MB free in $work; the stack is scaled down to $frames frames" >&2
  (( frames > 0 )) || { echo "not enough disk space" >&2; exit 1; }
fi

seconds() { date +%s.%N; }
elapsed() { awk -v a="$1" -v b="$2" 'BEGIN { print b - a }'; }

"$maker" "$work/stack.tif" "$width" "$height" "$frames"
bytes=$(stat -c %s "$work/stack.tif")
sync

# Disk speed on a shared machine varies from one moment to the next: copy and convert
# take turns, each starting with the stack read once (so both find it in the page cache
# as far as the machine keeps it), and the best of three rounds of each is reported.
convert_once() {
  local out="$1" log="$2"
  local convert=("$cli" convert --tiff "$work/stack.tif" --rate 20 --device Miniscope --sensor Bench --into "$out")
  if [ -x /usr/bin/time ]; then
    /usr/bin/time -v "${convert[@]}" > /dev/null 2> "$log"
    awk -F': ' '/Maximum resident set size/ { print $2 }' "$log"
  else
    # No time program: follow the process's own high-water mark until it ends.
    "${convert[@]}" > /dev/null 2> "$log" &
    local pid=$! peak=0 hwm
    while kill -0 "$pid" 2> /dev/null; do
      hwm=$(awk '/VmHWM/ { print $2 }' "/proc/$pid/status" 2> /dev/null || true)
      [ -n "$hwm" ] && peak=$hwm
      sleep 0.05
    done
    wait "$pid"
    echo "$peak"
  fi
}

copy_s=0 convert_s=0 peak_kb=0
for round in 1 2 3; do
  cat "$work/stack.tif" > /dev/null
  start=$(seconds)
  cp "$work/stack.tif" "$work/copy.tif"
  took=$(elapsed "$start" "$(seconds)")
  copy_s=$(awk -v a="$copy_s" -v b="$took" 'BEGIN { print (a == 0 || b < a) ? b : a }')
  rm "$work/copy.tif"
  sync

  rm -f "$work/bench.orvel"
  cat "$work/stack.tif" > /dev/null
  start=$(seconds)
  peak=$(convert_once "$work/bench.orvel" "$work/convert.log")
  took=$(elapsed "$start" "$(seconds)")
  convert_s=$(awk -v a="$convert_s" -v b="$took" 'BEGIN { print (a == 0 || b < a) ? b : a }')
  peak_kb=$(( peak > peak_kb ? peak : peak_kb ))
  stored=$(stat -c %s "$work/bench.orvel")
  sync
done

awk -v w="$width" -v h="$height" -v n="$frames" -v bytes="$bytes" -v stored="$stored" \
    -v copy="$copy_s" -v convert="$convert_s" -v peak="$peak_kb" 'BEGIN {
  mb = bytes / 1e6
  printf "stack:             %d x %d x %d frames, 16-bit, %.0f MB\n", w, h, n, mb
  printf "data file:         %.0f MB\n", stored / 1e6
  printf "cp (baseline):     %.2f s, %.0f MB/s\n", copy, mb / copy
  printf "zarvi-cli convert: %.2f s, %.0f MB/s, %.2f x the speed of cp\n", convert, mb / convert, copy / convert
  printf "peak memory:       %.1f MB (target below 200 MB)\n", peak / 1024
}'
