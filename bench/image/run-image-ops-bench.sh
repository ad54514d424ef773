#!/usr/bin/env bash
# Runs each image operation through `zarvi-cli run` on a 512 x 512 x 2000 stack and
# reports its throughput as a ratio to copying the same frames through the data-file
# layer with no computation, measured in the same run (target >= 0.5), best of three
# rounds. Then the peak resident memory of each operation on a 2 GB stack
# (512 x 512 x 4096), which must stay under 200 MB: the frames are streamed.
# Usage: bench/image/run-image-ops-bench.sh [BUILD_DIR] [FRAMES]
set -euo pipefail
build=${1:-build}
frames=${2:-2000}
cli="$build/cli/zarvi-cli"
tool="$build/bench/image/image_stack_tool"
for program in "$cli" "$tool"; do
  [ -x "$program" ] || { echo "missing $program; build zarvi-cli and image_stack_tool first" >&2; exit 2; }
done
work=$(mktemp -d "${TMPDIR:-/tmp}/zarvi-image-bench.XXXXXX")
trap 'rm -rf "$work"' EXIT
stack=DataAcquisition/Bench/Images/Series1/Cells/ImageStack

seconds() { date +%s.%N; }
elapsed() { awk -v a="$1" -v b="$2" 'BEGIN { print b - a }'; }
best() { awk -v a="$1" -v b="$2" 'BEGIN { print (a == 0 || b < a) ? b : a }'; }

# name|params JSON
operations=(
  'Binning|{"BinningFactor": "2x2"}'
  'Crop|{"CropCoordinates": [64, 64, 384, 384]}'
  'Temporal Downsample|{"Factor": 4, "Method": "Mean"}'
  'Remove Background|{"BackgroundCoordinates": {"Shape": "Rectangle", "Points": [[10, 10], [60, 60]]}}'
  'Stack Projection|{"ProjectionMethod": "Standard Deviation"}'
  'ROI Signals|{}'
  'Images deltaF/F|{}'
)

# 100 cell ROIs of 11 x 11 pixels on a grid, for "ROI Signals".
add_rois() {
  local json="[" sep="" x y
  for y in $(seq 0 9); do
    for x in $(seq 0 9); do
      json+="$sep{\"Shape\": \"Rectangle\", \"Points\": [[$((20 + 45 * x)), $((20 + 45 * y))], [$((30 + 45 * x)), $((30 + 45 * y))]]}"
      sep=", "
    done
  done
  "$cli" rois "$1" --image "$stack" --add "$json]" > /dev/null
}

# Writes a stack of `$2` frames to `$1`, with the cell ROIs when the command exists.
make_stack() {
  "$tool" make "$1" 512 512 "$2"
  add_rois "$1" 2> /dev/null || echo "(no ROIs: zarvi-cli rois is not available)"
}

make_stack "$work/stack.orvel" "$frames"
echo "stack: 512 x 512 x $frames, $(du -m "$work/stack.orvel" | cut -f1) MB"

copy_s=0
for round in 1 2 3; do
  cp "$work/stack.orvel" "$work/run.orvel"
  start=$(seconds)
  "$tool" copy "$work/run.orvel"
  copy_s=$(best "$copy_s" "$(elapsed "$start" "$(seconds)")")
done
printf '%-22s %9s %9s\n' operation seconds ratio
printf '%-22s %9.3f %9s\n' "frame copy (baseline)" "$copy_s" 1
for entry in "${operations[@]}"; do
  name=${entry%%|*}
  echo "${entry#*|}" > "$work/params.json"
  run_s=0
  for round in 1 2 3; do
    cp "$work/stack.orvel" "$work/run.orvel"
    start=$(seconds)
    if ! "$cli" run "$work/run.orvel" --operation "$name" --params "$work/params.json" --data "$stack" \
        > /dev/null 2> "$work/log"; then
      echo "$name failed: $(tail -1 "$work/log")"
      continue 2
    fi
    run_s=$(best "$run_s" "$(elapsed "$start" "$(seconds)")")
  done
  awk -v n="$name" -v r="$run_s" -v c="$copy_s" 'BEGIN { printf "%-22s %9.3f %9.3f\n", n, r, c / r }'
done
echo "ratio = frame copy time / operation time (target >= 0.5)"

rm -f "$work/stack.orvel" "$work/run.orvel"
make_stack "$work/big.orvel" 4096
echo "peak resident memory on a 512 x 512 x 4096 stack ($(du -m "$work/big.orvel" | cut -f1) MB):"
for entry in "${operations[@]}"; do
  name=${entry%%|*}
  echo "${entry#*|}" > "$work/params.json"
  if /usr/bin/time -v "$cli" run "$work/big.orvel" --operation "$name" --params "$work/params.json" \
      --data "$stack" > /dev/null 2> "$work/log"; then
    awk -F': ' -v n="$name" '/Maximum resident set size/ { printf "%-22s %6.0f MB\n", n, $2 / 1024 }' "$work/log"
  else
    echo "$name failed: $(grep -v '^\s' "$work/log" | tail -1)"
  fi
done
