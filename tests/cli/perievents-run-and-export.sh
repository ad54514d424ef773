#!/usr/bin/env bash
# The demo recording analysed with `run`; the saved matrix and a statistic exported
# with `export`, rows named by their events.
set -euo pipefail
cli=$1 work=$2
rm -rf "$work" && mkdir -p "$work" && cd "$work"
result=DataAnalyzed/FiberPhotometry/Signals/Series1/Perievents1/Biosensor
params='{"EventPath": "DataAcquisition/FiberPhotometry/Events/Series1", "Event": "Stimulus",
  "PerieventTimeFrame": [-2, 4], "StatisticTimeFrames": [0, 1], "TimeFramesNames": ["Response"],
  "Statistics": ["AUC"]}'
"$cli" demo demo.orvel > /dev/null
"$cli" run demo.orvel --operation Perievents --params "$params" \
  --data DataAcquisition/FiberPhotometry/Signals/Series1/Biosensor/Signal > run.txt
grep -qx "$result/Perievents" run.txt
"$cli" export demo.orvel --data "$result/Perievents" --to pe.csv > /dev/null
"$cli" export demo.orvel --data "$result/AUC" --to pe-auc.csv > /dev/null
head -n 1 pe-auc.csv | grep -qx 'AUC,Response (V)'
grep -q '^Event1,' pe.csv
