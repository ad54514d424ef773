#!/usr/bin/env bash
# Motion Correction of the demo stack through `run`: the corrected stack and its shifts are
# written side by side, and `export` writes the shifts to CSV, one row per frame at the
# frame's time; a stack that is not square is refused and nothing is written.
set -euo pipefail
cli=$1 work=$2 h5dump=$3
rm -rf "$work" && mkdir -p "$work" && cd "$work"
stack=DataAcquisition/Miniscope/Images/Series1/Sensor1/ImageStack
result=DataProcessed/Miniscope/Images/Series1/MotionCorrectedImages1/Sensor1
"$cli" demo demo.orvel > /dev/null
"$cli" run demo.orvel --operation "Motion Correction" --params '{"ReferenceFrame": 10}' --data $stack \
  > run.txt 2> /dev/null
grep -qx "$result/ImageStack" run.txt
"$h5dump" -H -d "$result/AlignmentShifts" demo.orvel | grep -q 'SIMPLE { ( 500, 2 ) / ( 500, 2 ) }'
"$h5dump" -H -d "$result/AlignmentShifts" demo.orvel | grep -q 'H5T_IEEE_F64LE'
"$cli" export demo.orvel --data "$result/AlignmentShifts" --to shifts.csv > /dev/null 2>&1
[ "$(head -n 1 shifts.csv)" = "Time (s),X Shift (px),Y Shift (px)" ]
[ "$(wc -l < shifts.csv)" -eq 501 ]
# The reference frame is not moved; every shift is a whole number of sixths of a pixel.
[ "$(sed -n 12p shifts.csv | cut -d, -f2-)" = "0,0" ]
tail -n +2 shifts.csv | awk -F, '{
  for (i = 2; i <= 3; ++i) {
    s = $i * 6; r = int(s + (s < 0 ? -0.5 : 0.5)); d = s - r
    if (d > 1e-4 || d < -1e-4) exit 1
  }
}'

"$cli" run demo.orvel --operation Crop --params '{"CropCoordinates": [0, 0, 100, 50]}' --data $stack \
  > /dev/null 2>&1
cropped=DataProcessed/Miniscope/Images/Series1/CroppedImages1/Sensor1/ImageStack
if "$cli" run demo.orvel --operation "Motion Correction" --params '{"ReferenceFrame": 0}' --data $cropped \
    > /dev/null 2> err.txt; then
  exit 1
fi
grep -q 'The input images are not square. This operation can only be applied to square images.' err.txt
if "$h5dump" -H -g DataProcessed/Miniscope/Images/Series1/MotionCorrectedImages2 demo.orvel > /dev/null 2>&1; then
  exit 1
fi
