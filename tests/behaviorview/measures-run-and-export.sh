#!/usr/bin/env bash
# "Measures" headless: a path written into the demo file with the HDF5 tools, measured
# through `run` with its regions as parameters, its table and its zone's visits exported
# with `export`.
set -euo pipefail
cli=$1 work=$2 h5import=$3
rm -rf "$work" && mkdir -p "$work" && cd "$work"
"$cli" demo demo.orvel > /dev/null
path=DataBehavior/BehaviorCamera/Coordinates/Series1
# 16 frames per second for 10 s: at (50, 100) for 5 s, then at (200, 100) in the zone,
# with frame 150 lost. (Times in sixteenths of a second are exact in any float.)
awk 'BEGIN { for (k = 0; k < 160; k++) print (k == 150 ? "-1 -1" : (k < 80 ? "50 100" : "200 100")) }' > xy.txt
awk 'BEGIN { for (k = 0; k < 160; k++) print k / 16 }' > t.txt
printf 'PATH %s/Coordinates1\nINPUT-CLASS TEXTIN\nRANK 2\nDIMENSION-SIZES 160 2\nOUTPUT-CLASS IN\nOUTPUT-SIZE 32\n' \
  $path > xy.cfg
printf 'PATH %s/Time\nINPUT-CLASS TEXTFP\nRANK 1\nDIMENSION-SIZES 160\nOUTPUT-CLASS FP\nOUTPUT-SIZE 64\n' \
  $path > t.cfg
"$h5import" xy.txt -c xy.cfg t.txt -c t.cfg -o demo.orvel
cat > measures.json <<'JSON'
{"ArenaCoordinates": [10, 10, 300, 230], "ArenaRoiShape": "Rectangle",
 "Zones": [{"Name": "Zone1", "Shape": "Rectangle", "Points": [[150, 50], [250, 150]]}],
 "CalibrationCoordinates": [0, 5, 150, 5], "CalibrationLength(cm)": 15, "TimeBin(sec)": 5}
JSON
"$cli" run demo.orvel --operation Measures --params measures.json --data $path/Coordinates1 > run.txt 2> /dev/null
table=DataBehavior/BehaviorCamera/Measures/Series1/Measures1/Coordinates1/Measures
grep -qx $table run.txt
grep -qx DataBehavior/BehaviorCamera/Events/Series1/Zone1 run.txt

"$cli" export demo.orvel --data $table --to measures.csv > /dev/null 2>&1
head -n 1 measures.csv | grep -qx 'Measures,Start (s),End (s),Distance (cm),MeanSpeed (cm/s),TrackedTime (s),Arena Time (s),Arena Fraction,Arena Entries,Zone1 Time (s),Zone1 Fraction,Zone1 Entries'
# One jump of 150 px at 10 px/cm; 159 frames of 1/16 s tracked, 79 of them in the zone.
grep -qx 'Whole recording,0,10,15,.*,9.9375,9.9375,1,1,4.9375,.*,1' measures.csv
grep -qx 'Bin1,0,5,0,0,5,5,1,1,0,0,0' measures.csv
grep -q '^Bin2,5,10,15,' measures.csv

"$cli" export demo.orvel --data DataBehavior/BehaviorCamera/Events/Series1/Zone1 --to zone1.csv > /dev/null 2>&1
# One visit, from its entry at 5 s through the lost frame to the end of the recording.
[ "$(cat zone1.csv)" = "$(printf 'Event,Zone1 Onset (s),Zone1 Offset (s)\nEvent1,5,10')" ]

# Without an arena the run is refused with the arena message and writes nothing.
echo '{"TimeBin(sec)": 5}' > noarena.json
if "$cli" run demo.orvel --operation Measures --params noarena.json --data $path/Coordinates1 > /dev/null 2> err.txt; then
  exit 1
fi
grep -q 'No Arena found. Draw Arena before moving forward.' err.txt
if "$cli" export demo.orvel --data DataBehavior/BehaviorCamera/Measures/Series1/Measures2/Coordinates1/Measures \
    --to again.csv > /dev/null 2>&1; then
  exit 1
fi
