#!/usr/bin/env bash
# The demo recording's video tracked with `run` and its coordinates exported with
# `export`; tracking the same link again is refused and changes nothing.
set -euo pipefail
cli=$1 work=$2
rm -rf "$work" && mkdir -p "$work" && cd "$work"
link=DataConverted/BehaviorCamera/Video/Series1/Video1
result=DataBehavior/BehaviorCamera/Coordinates/Series1/Video1/Coordinates1
params='{"ConvertToGrayscale": 1, "ValueRange(%)": [0, 20], "Interpolate": 1}'
"$cli" demo demo.orvel > /dev/null
"$cli" run demo.orvel --operation AnimalTracking --params "$params" --data "$link" > run.txt 2> /dev/null
grep -qx "$result" run.txt
"$cli" export demo.orvel --data "$result" --to track.csv > /dev/null
head -n 1 track.csv | grep -qx 'Time (s),X (px),Y (px)'
# The demo video has 200 frames at 20 per second; the animal is found on every one.
[ "$(wc -l < track.csv)" -eq 201 ]
sed -n 2p track.csv | grep -q '^0,'
sed -n 201p track.csv | grep -q '^9\.95,'
if grep -q ',-1,-1$' track.csv; then exit 1; fi
cp track.csv first.csv
if "$cli" run demo.orvel --operation AnimalTracking --params "$params" --data "$link" > /dev/null 2> err.txt; then
  exit 1
fi
grep -q "Dataset $result already saved." err.txt
"$cli" export demo.orvel --data "$result" --to track.csv > /dev/null
cmp -s first.csv track.csv
