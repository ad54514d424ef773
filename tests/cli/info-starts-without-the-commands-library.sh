#!/usr/bin/env bash
# `info` starts without the commands library, and so without OpenCV, the numeric libraries
# and the video libraries (OpenCV's video input, FFmpeg); `ops` loads the commands library,
# and the demo, which writes a video, also loads the video libraries on first use. A run of
# a signal operation starts without OpenCV, libtiff and the spreadsheet writer; a run of
# another family's operation is handed on to the commands library.
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
s=DataAcquisition/FiberPhotometry/Signals/Series1/Biosensor/Signal
LD_DEBUG=files "$cli" run demo.orvel --operation Decimation --params '{"DecimationFactor": 10}' --data $s \
  > decimation.txt 2> decimation-loads.txt
grep -q 'DecimatedSignals1/Biosensor/Signal' decimation.txt
grep -q 'libzarvi_cli_signal_commands.so' decimation-loads.txt
if grep -qE 'libzarvi_cli_commands|libopencv|libtiff|libxlsxwriter' decimation-loads.txt; then
  exit 1
fi
stack=DataAcquisition/Miniscope/Images/Series1/Sensor1/ImageStack
# Its parameters come from a pipe here, which only the library that runs it may read.
LD_DEBUG=files "$cli" run demo.orvel --operation Crop --params <(echo '{"CropCoordinates": [0, 0, 8, 8]}') \
  --data $stack > crop.txt 2> crop-loads.txt
grep -q 'CroppedImages1/Sensor1/ImageStack' crop.txt
grep -q 'libzarvi_cli_commands.so' crop-loads.txt
# A command that does not exist is refused without loading anything more.
if LD_DEBUG=files "$cli" nonsense > /dev/null 2> nonsense-loads.txt; then exit 1; fi
if grep -q 'libzarvi_cli_commands' nonsense-loads.txt; then exit 1; fi
