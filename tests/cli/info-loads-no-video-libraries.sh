#!/usr/bin/env bash
# `info` starts without the video libraries (OpenCV's video input, FFmpeg); the demo,
# which writes a video, loads them on first use and the video is there.
set -euo pipefail
cli=$1 work=$2
rm -rf "$work" && mkdir -p "$work" && cd "$work"
LD_DEBUG=files "$cli" demo demo.orvel > /dev/null 2> demo-loads.txt
grep -q 'libzarvi_video.so' demo-loads.txt
grep -q 'libavformat' demo-loads.txt
[ -s demo_behavior.avi ]
LD_DEBUG=files "$cli" info demo.orvel > info.txt 2> info-loads.txt
grep -q '^Classification: data file' info.txt
if grep -qE 'libzarvi_video|libopencv_videoio|libavformat|libavcodec' info-loads.txt; then exit 1; fi
