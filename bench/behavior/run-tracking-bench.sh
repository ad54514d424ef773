#!/usr/bin/env bash
# Tracks the animal of a 640 x 480 H.264 video of FRAMES frames (default 10000) through
# `zarvi-cli run` and reports its rate as a ratio to decoding the same frames with no
# tracking (video_decode_tool: VideoFrameReader, 8-bit BGR, as the tracking reads them),
# measured in the same run, best of two rounds each (target >= 0.6). Then the peak
# resident memory of tracking FRAMES and 2 x FRAMES frames (/usr/bin/time -v), which must
# not grow with the video's length: frames are decoded a few ahead and never kept. The
# load average is printed with the figures, as the machine may be shared.
# Usage: bench/behavior/run-tracking-bench.sh [BUILD_DIR] [FRAMES]
set -euo pipefail
build=${1:-build}
frames=${2:-10000}
cli="$build/cli/zarvi-cli"
tool="$build/bench/behavior/video_decode_tool"
for program in "$cli" "$tool" /usr/bin/time; do
  [ -x "$program" ] || { echo "missing $program; build zarvi-cli and video_decode_tool first" >&2; exit 2; }
done
command -v ffmpeg > /dev/null || { echo "missing the ffmpeg program" >&2; exit 2; }
work=$(mktemp -d "${TMPDIR:-/tmp}/zarvi-tracking-bench.XXXXXX")
trap 'rm -rf "$work"' EXIT
link=DataConverted/Camera/Video/Series1/Video1
params='{"ConvertToGrayscale": 1, "ValueRange(%)": [0, 30], "DetectOutliers": 1, "AnimalSize(px)": 44,
         "Interpolate": 1, "SmoothCoordinates": 1, "SmoothWindow(frames)": 5}'

seconds() { date +%s.%N; }
elapsed() { awk -v a="$1" -v b="$2" 'BEGIN { print b - a }'; }
best() { awk -v a="$1" -v b="$2" 'BEGIN { print (a == 0 || b < a) ? b : a }'; }

# An H.264 video of $2 frames at 30 frames per second, linked into the data file $3.
make_video() {
  "$tool" frames "$2" |
    ffmpeg -v error -y -f rawvideo -pix_fmt bgr24 -s 640x480 -r 30 -i - -c:v libx264 -preset fast \
      -pix_fmt yuv420p "$1"
  "$cli" convert --video "$1" --device Camera --into "$3" > /dev/null 2>&1
}

track() {
  "$cli" run "$1" --operation AnimalTracking --params "$params" --data "$link" > /dev/null 2> "$work/log" ||
    { echo "tracking failed: $(tail -1 "$work/log")" >&2; exit 1; }
}

make_video "$work/arena.mp4" "$frames" "$work/base.orvel"
echo "video: 640 x 480 H.264, $frames frames, $(du -k "$work/arena.mp4" | cut -f1) kB"
echo "load before: $(uptime | sed 's/.*load average: //')"

decode_s=0
track_s=0
for round in 1 2; do
  start=$(seconds)
  "$tool" decode "$work/arena.mp4" > /dev/null
  decode_s=$(best "$decode_s" "$(elapsed "$start" "$(seconds)")")
  cp "$work/base.orvel" "$work/run.orvel"
  start=$(seconds)
  track "$work/run.orvel"
  track_s=$(best "$track_s" "$(elapsed "$start" "$(seconds)")")
done
echo "load after:  $(uptime | sed 's/.*load average: //')"
printf '%-24s %9s %12s\n' run seconds "frames/s"
awk -v d="$decode_s" -v t="$track_s" -v n="$frames" 'BEGIN {
  printf "%-24s %9.3f %12.1f\n", "decode only (baseline)", d, n / d
  printf "%-24s %9.3f %12.1f\n", "AnimalTracking", t, n / t
  printf "ratio = decode time / tracking time = %.3f (target >= 0.6)\n", d / t }'

peak_kb() {
  cp "$1" "$work/run.orvel"
  /usr/bin/time -v "$cli" run "$work/run.orvel" --operation AnimalTracking --params "$params" --data "$link" \
    2>&1 > /dev/null | awk -F': ' '/Maximum resident set size/ { print $2 }'
}
make_video "$work/long.mp4" $((2 * frames)) "$work/long.orvel"
short_kb=$(peak_kb "$work/base.orvel")
long_kb=$(peak_kb "$work/long.orvel")
echo "peak memory: $((short_kb / 1024)) MB for $frames frames, $((long_kb / 1024)) MB for $((2 * frames)) frames"
