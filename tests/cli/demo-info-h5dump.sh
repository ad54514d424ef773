#!/usr/bin/env bash
# The demo recording, its inspection, and a standard HDF5 tool reading what we wrote.
set -euo pipefail
cli=$1 work=$2 h5dump=$3
rm -rf "$work" && mkdir -p "$work" && cd "$work"
"$cli" demo demo.orvel --seed 3
"$cli" info demo.orvel > info.txt
for g in DataAcquisition FiberPhotometry Miniscope DataConverted BehaviorCamera ImageStack Stimulus Video1; do
  grep -q "$g" info.txt
done
"$h5dump" -H demo.orvel > /dev/null
