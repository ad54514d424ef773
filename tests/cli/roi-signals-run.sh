#!/usr/bin/env bash
# ROI Signals of the demo stack through `run`, after adding its cells with `rois --add`:
# one Signal per cell, each with the stack's 500 samples, as a standard HDF5 tool lists
# them; a stack without ROIs and an unknown name are refused and write nothing; help
# shows the forms of the ROI-valued parameters.
set -euo pipefail
cli=$1 work=$2 h5ls=$3
rm -rf "$work" && mkdir -p "$work" && cd "$work"
stack=DataAcquisition/Miniscope/Images/Series1/Sensor1/ImageStack
result=DataProcessed/Miniscope/ROISignals/Series1/ROISignals1
"$cli" demo demo.orvel > /dev/null

if "$cli" run demo.orvel --operation "ROI Signals" --params '{}' --data $stack > /dev/null 2> err.txt; then
  exit 1
fi
grep -q 'has no cell ROIs. Draw the cells on the stack' err.txt

"$cli" rois demo.orvel --image $stack --add '[
  {"Shape": "Rectangle", "Points": [[10, 12], [40, 30]]},
  {"Shape": "Circle", "Points": [[128, 128], [128, 140]]},
  {"Name": "Soma", "Shape": "Polygon", "Points": [[50, 50], [90, 55], [70, 99]]}]' > names.txt
printf 'ROI1\nROI2\nSoma\n' | cmp -s - names.txt

if "$cli" run demo.orvel --operation "ROI Signals" --params '{"ROINames": ["ROI7"]}' --data $stack \
  > /dev/null 2> err.txt; then
  exit 1
fi
grep -q 'has no ROI named ROI7' err.txt
if "$h5ls" demo.orvel/DataProcessed > /dev/null 2>&1; then
  exit 1
fi

"$cli" run demo.orvel --operation "ROI Signals" --params '{}' --data $stack > run.txt 2> /dev/null
printf '%s\n' "$result/ROI1/Signal" "$result/ROI2/Signal" "$result/Soma/Signal" | cmp -s - run.txt
"$h5ls" -r demo.orvel/$result > list.txt
for roi in ROI1 ROI2 Soma; do
  grep -Eq "^/$roi/Signal +Dataset \{500/Inf\}" list.txt
  grep -Eq "^/$roi/Time +Dataset \{500/Inf\}" list.txt
done
[ "$(grep -c '/Signal ' list.txt)" -eq 3 ]

"$cli" help "ROI Signals" | grep -q 'Example: \["ROI1", "ROI3"\]'
"$cli" help "Remove Background" | grep -q 'Example: {"Shape": "Rectangle", "Points": \[\[0, 0\], \[31, 23\]\]}'
