#!/usr/bin/env bash
# The convert and export commands end to end, with their exit codes; failed
# conversions leave no file behind.
set -euo pipefail
cli=$1 work=$2
rm -rf "$work" && mkdir -p "$work" && cd "$work"
printf 'Time,Green,Stim\n0,1.5,0.25\n0.5,2.5,\n1,3.5,\n' > table.csv
"$cli" convert --csv table.csv --time-column 1 --event-columns 3 --device Rig --into out.orvel
"$cli" export out.orvel --data DataConverted/Rig/Signals/Series1/Green --to green.csv
printf 'Time (s),Green\n0,1.5\n0.5,2.5\n1,3.5\n' | cmp - green.csv
"$cli" convert --csv table.csv --time-column 1 --time-unit ms --event-columns 3 --device Rig --series 1 \
  --into out.orvel && exit 1 || test $? -eq 1
"$cli" convert --v5 out.orvel --into copy.orvel && exit 1 || test $? -eq 4
test ! -e copy.orvel
"$cli" convert --tiff missing.tif --rate 10 --device D --sensor S --into none.orvel && exit 1 || test $? -eq 1
test ! -e none.orvel
