#!/usr/bin/env bash
# Converts a one-hour recording of each photometry format (pyPhotometry .ppd,
# Neurophotometrics .csv, TDT block) through `zarvi-cli convert` and reports, per format,
# the best of three rounds as a ratio to copying the same bytes in the same run: the
# source's bytes, and the bytes of the data file written. Also the peak memory of each
# conversion, which must not grow with the recording's length.
# Usage: bench/convert/run-recording-convert-bench.sh [BUILD_DIR]   (needs make_recordings and zarvi-cli)
set -euo pipefail
build=${1:-build}
cli="$build/cli/zarvi-cli"
maker="$build/bench/convert/make_recordings"
for program in "$cli" "$maker"; do
  [ -x "$program" ] || { echo "missing $program; build zarvi-cli and make_recordings first" >&2; exit 2; }
done
work=$(mktemp -d "${TMPDIR:-/tmp}/zarvi-recording-bench.XXXXXX")
trap 'rm -rf "$work"' EXIT
"$maker" "$work"

seconds() { date +%s.%N; }
elapsed() { awk -v a="$1" -v b="$2" 'BEGIN { print b - a }'; }
best() { awk -v a="$1" -v b="$2" 'BEGIN { print (a == 0 || b < a) ? b : a }'; }
# Processor seconds (user + system) in a log of /usr/bin/time -v: on a shared, loaded machine
# they say more about the program than the wall clock does.
cpu_of() { awk -F': ' '/User time|System time/ { t += $2 } END { print t + 0 }' "$1"; }
# Copies a file or folder of `bytes` bytes and prints the seconds taken.
copy_seconds() {
  local start took
  start=$(seconds)
  cp -r "$1" "$2"
  took=$(elapsed "$start" "$(seconds)")
  rm -rf "$2"
  echo "$took"
}

# The program's own start-up (loading its libraries) is part of every conversion; measured
# alone so that the conversion's own share can be read off.
startup_s=0 startup_kb=0 startup_cpu=0
for round in 1 2 3; do
  start=$(seconds)
  if [ -x /usr/bin/time ]; then
    /usr/bin/time -v "$cli" convert --help > /dev/null 2> "$work/log" || true
    startup_kb=$(awk -F': ' '/Maximum resident set size/ { print $2 }' "$work/log")
    startup_cpu=$(best "$startup_cpu" "$(cpu_of "$work/log")")
  else
    "$cli" convert --help > /dev/null 2>&1 || true
  fi
  startup_s=$(best "$startup_s" "$(elapsed "$start" "$(seconds)")")
done
printf 'start-up alone: %.3f s (cpu %.2f s), peak %.0f MB\n' "$startup_s" "$startup_cpu" \
  "$(awk -v k="$startup_kb" 'BEGIN { print k / 1024 }')"

printf '%-18s %9s %9s %9s %9s %9s %9s %9s %9s %9s\n' format "source MB" "file MB" "convert s" "cp src s" "cp file s" ratio-src ratio-file "src -start" "cpu s"
for source in recording.ppd neurophotometrics.csv Block-1; do
  src="$work/$source"
  src_bytes=$(du -sb "$src" | cut -f1)
  convert_s=0 copy_s=0 copy_file_s=0 peak_kb=0 cpu_s=0
  for round in 1 2 3; do
    find "$src" -type f -exec cat {} + > /dev/null
    copy_s=$(best "$copy_s" "$(copy_seconds "$src" "$work/copy")")
    rm -f "$work/out.orvel"
    start=$(seconds)
    if [ -x /usr/bin/time ]; then
      /usr/bin/time -v "$cli" convert "$src" --into "$work/out.orvel" > /dev/null 2> "$work/log"
      peak=$(awk -F': ' '/Maximum resident set size/ { print $2 }' "$work/log")
      cpu_s=$(best "$cpu_s" "$(cpu_of "$work/log")")
    else
      "$cli" convert "$src" --into "$work/out.orvel" > /dev/null 2> "$work/log"
      peak=0
    fi
    convert_s=$(best "$convert_s" "$(elapsed "$start" "$(seconds)")")
    peak_kb=$(( peak > peak_kb ? peak : peak_kb ))
    copy_file_s=$(best "$copy_file_s" "$(copy_seconds "$work/out.orvel" "$work/copy.orvel")")
  done
  file_bytes=$(stat -c %s "$work/out.orvel")
  awk -v f="$source" -v sb="$src_bytes" -v fb="$file_bytes" -v c="$convert_s" -v cs="$copy_s" -v cf="$copy_file_s" \
      -v peak="$peak_kb" -v up="$startup_s" -v cpu="$cpu_s" 'BEGIN {
    own = c - up > 0 ? cs / (c - up) : 0
    printf "%-18s %9.1f %9.1f %9.3f %9.3f %9.3f %9.3f %9.3f %9.3f %9.2f   peak %.0f MB\n", f, sb / 1e6, fb / 1e6, c, cs, cf, cs / c, cf / c, own, cpu, peak / 1024
  }'
done
echo "ratio = copy time / conversion time (target >= 0.5); src -start: the same without the start-up;"
echo "cpu s: processor time of the conversion, start-up included"
echo "peak memory should not depend on the recording's length (compare with the start-up's peak)"
