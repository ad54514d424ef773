#!/usr/bin/env bash
# Motion Correction through `zarvi-cli run` on a 512 x 512 x FRAMES uint16 stack of a
# drifting, jittering field of cells (image_stack_tool make-moving), reading and writing
# the file included, in frames per second and as ratios to two baselines measured in the
# same run, best of three rounds:
#   (a) copying the same frames through the data-file layer, no computation
#       (image_stack_tool copy);
#   (b) the per-frame computation alone, on one thread (motion_correction_bench).
# Then every shift the run kept is compared with the plain path's, and the peak resident
# memory of a run on a 2 GB stack (512 x 512 x 4096) is measured.
# Targets: >= 200 frames per second end to end; peak resident memory < 300 MB.
# Other work on the machine slows everything down: the load is printed before and after.
# Usage: bench/image/run-motion-correction-bench.sh [BUILD_DIR] [FRAMES]
set -euo pipefail
build=${1:-build}
frames=${2:-1000}
cli="$build/cli/zarvi-cli"
tool="$build/bench/image/image_stack_tool"
kernel="$build/bench/image/motion_correction_bench"
for program in "$cli" "$tool" "$kernel"; do
  [ -x "$program" ] || { echo "missing $program; build zarvi-cli, image_stack_tool and motion_correction_bench" >&2; exit 2; }
done
work=$(mktemp -d "${TMPDIR:-/tmp}/zarvi-motion-bench.XXXXXX")
trap 'rm -rf "$work"' EXIT
stack=DataAcquisition/Bench/Images/Series1/Cells/ImageStack
shifts=DataProcessed/Bench/Images/Series1/MotionCorrectedImages1/Cells/AlignmentShifts
params='{"ReferenceFrame": 0}'

seconds() { date +%s.%N; }
elapsed() { awk -v a="$1" -v b="$2" 'BEGIN { print b - a }'; }
best() { awk -v a="$1" -v b="$2" 'BEGIN { print (a == 0 || b < a) ? b : a }'; }

echo "load before: $(uptime | sed 's/.*load average: //')"
"$tool" make-moving "$work/stack.orvel" 512 512 "$frames"
echo "stack: 512 x 512 x $frames uint16, $(($(stat -c %s "$work/stack.orvel") / 1048576)) MB"

copy_s=0 run_s=0 cpu_s=0
for round in 1 2 3; do
  cp "$work/stack.orvel" "$work/copy.orvel"
  start=$(seconds)
  "$tool" copy "$work/copy.orvel"
  copy_s=$(best "$copy_s" "$(elapsed "$start" "$(seconds)")")
  cp "$work/stack.orvel" "$work/run.orvel"
  start=$(seconds)
  # The processor time (user + system) says what the run costs whatever else the machine does.
  /usr/bin/time -f "%U %S" -o "$work/cpu" "$cli" run "$work/run.orvel" --operation "Motion Correction" \
    --params "$params" --data "$stack" > /dev/null 2> "$work/log" ||
    { echo "Motion Correction failed: $(tail -1 "$work/log")"; exit 1; }
  run_s=$(best "$run_s" "$(elapsed "$start" "$(seconds)")")
  cpu_s=$(best "$cpu_s" "$(awk '{ print $1 + $2 }' "$work/cpu")")
done
"$kernel" "$work/run.orvel" "$shifts" > "$work/kernel.txt"
kernel_fps=$(awk '/kernel alone/ { print $5 }' "$work/kernel.txt")

awk -v n="$frames" -v c="$copy_s" -v r="$run_s" -v k="$kernel_fps" -v p="$cpu_s" 'BEGIN {
  printf "%-44s %9s %10s\n", "", "seconds", "frames/s"
  printf "%-44s %9.3f %10.1f\n", "(a) frame copy, no computation", c, n / c
  printf "%-44s %9.3f %10.1f\n", "(b) per-frame computation alone, one thread", n / k, k
  printf "%-44s %9.3f %10.1f\n", "Motion Correction, zarvi-cli run", r, n / r
  printf "run speed / (a): %.3f   run speed / (b): %.2f   (target: >= 200 frames/s)\n", c / r, (n / r) / k
  printf "processor time of the run: %.2f ms per frame\n", 1000 * p / n
}'
grep -v "kernel alone" "$work/kernel.txt"

rm -f "$work/stack.orvel" "$work/copy.orvel" "$work/run.orvel"
"$tool" make-moving "$work/big.orvel" 512 512 4096
input_mb=$(($(stat -c %s "$work/big.orvel") / 1048576))
if /usr/bin/time -v "$cli" run "$work/big.orvel" --operation "Motion Correction" --params "$params" \
    --data "$stack" > /dev/null 2> "$work/log"; then
  awk -F': ' -v mb="$input_mb" '/Maximum resident set size/ {
    printf "peak resident memory on a 512 x 512 x 4096 stack (input %d MB): %.0f MB (target < 300 MB)\n", mb, $2 / 1024 }' "$work/log"
else
  echo "Motion Correction failed on the large stack: $(grep -v '^\s' "$work/log" | tail -1)"
fi
echo "load after: $(uptime | sed 's/.*load average: //')"
