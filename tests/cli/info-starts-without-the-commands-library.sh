#!/usr/bin/env bash
# `info` starts without the commands library, and so without OpenCV, the numeric libraries
# and the video libraries (OpenCV's video input, FFmpeg); `ops` loads the commands library,
# and the demo, which writes a video, also loads the video libraries on first use.
set -euo pipefail
cli=$1 work=$2
rm -rf "$work" && mkdir -p "$work" && cd "$work"
LD_DEBUG=files "$cli" demo demo.orvel > /dev/null 2> demo-loads.txt
grep -q 'libzarvi_cli_commands.so' demo-loads.txt
grep -q 'libzarvi_video.so' demo-loads.txt
grep -q 'libavformat' demo-loads.txt
[ -s demo_behavior.avi ]
LD_DEBUG=files "$cli" info demo.orvel > info.txt 2> info-loads.txt
grep -q '^Classification: data file' info.txt
if grep -qE 'libzarvi_cli_commands|libzarvi_video|libopencv|libavformat|libavcodec|libopenblas|liblapack|libtiff' \
  info-loads.txt; then
  exit 1
fi
LD_DEBUG=files "$cli" ops > ops.txt 2> ops-loads.txt
grep -q 'libzarvi_cli_commands.so' ops-loads.txt
grep -q '^Signal' ops.txt
# A command that does not exist is refused without loading anything more.
if LD_DEBUG=files "$cli" nonsense > /dev/null 2> nonsense-loads.txt; then exit 1; fi
if grep -q 'libzarvi_cli_commands' nonsense-loads.txt; then exit 1; fi
