#!/usr/bin/env bash
# Crop of the demo stack through `run`: the written stack has the rectangle's size and every
# frame, as a standard HDF5 tool reads it; a rectangle outside the frames is refused and
# writes nothing.
set -euo pipefail
cli=$1 work=$2 h5dump=$3
rm -rf "$work" && mkdir -p "$work" && cd "$work"
stack=DataAcquisition/Miniscope/Images/Series1/Sensor1/ImageStack
result=DataProcessed/Miniscope/Images/Series1/CroppedImages1/Sensor1
"$cli" demo demo.orvel > /dev/null
echo '{"CropCoordinates": [10, 20, 100, 50]}' > crop.json
"$cli" run demo.orvel --operation Crop --params crop.json --data $stack > run.txt 2> /dev/null
grep -qx "$result/ImageStack" run.txt
# Height 50, width 100, the demo's 500 frames, and one time per frame.
"$h5dump" -H -d "$result/ImageStack" demo.orvel | grep -q 'SIMPLE { ( 50, 100, 500 ) / ( 50, 100, H5S_UNLIMITED ) }'
"$h5dump" -H -d "$result/Time" demo.orvel | grep -q 'SIMPLE { ( 500 ) /'
"$h5dump" -a "$result/ImageStack/Width" demo.orvel | grep -q '(0): 100'
# One pixel as h5dump prints it: dataset, start "row,column,frame".
pixel() { "$h5dump" -d "$1" -s "$2" -c 1,1,1 demo.orvel | grep -o '): [0-9]*' | head -n 1; }
# The last pixel of the last frame is the input's pixel at (20 + 49, 10 + 99).
# (Assigned first, so that a failed read stops the script.)
cropped=$(pixel "$result/ImageStack" 49,99,499) input=$(pixel $stack 69,109,499)
[ "$cropped" = "$input" ]
cropped=$(pixel "$result/ImageStack" 0,0,0) input=$(pixel $stack 20,10,0)
[ "$cropped" = "$input" ]

echo '{"CropCoordinates": [200, 20, 100, 50]}' > outside.json
if "$cli" run demo.orvel --operation Crop --params outside.json --data $stack > /dev/null 2> err.txt; then
  exit 1
fi
grep -q 'The crop area is larger than the image size or lies outside the image.' err.txt
if "$h5dump" -H -g DataProcessed/Miniscope/Images/Series1/CroppedImages2 demo.orvel > /dev/null 2>&1; then
  exit 1
fi
"$cli" help Crop | grep -q 'Example: \[16, 32, 128, 96\]'
