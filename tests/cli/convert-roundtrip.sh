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
# The exported workbook converts back to the same signal, from its sheet named or the first.
"$cli" export out.orvel --data DataConverted/Rig/Signals/Series1/Green --to green.xlsx
"$cli" convert --csv green.xlsx --sheet Sheet1 --time-column 1 --device Rig --into back.orvel
"$cli" export back.orvel --data DataConverted/Rig/Signals/Series1/Green --to back.csv
cmp green.csv back.csv
"$cli" convert green.xlsx --device Rig --into back.orvel
"$cli" convert --csv green.xlsx --sheet Session --time-column 1 --device Rig --into none.orvel 2> sheet.err &&
  exit 1 || test $? -eq 1
grep -q 'has no sheet named Session; its sheets are Sheet1' sheet.err
test ! -e none.orvel
"$cli" convert --csv table.csv --time-column 1 --time-unit ms --event-columns 3 --device Rig --series 1 \
  --into out.orvel && exit 1 || test $? -eq 1
"$cli" convert --v5 out.orvel --into copy.orvel && exit 1 || test $? -eq 4
test ! -e copy.orvel
"$cli" convert --tiff missing.tif --rate 10 --device D --sensor S --into none.orvel && exit 1 || test $? -eq 1
test ! -e none.orvel
# A 0/5 V trigger column read at its half-way level, a unit from the header and one typed.
printf 'Time,Green (V),Red,TTL\n0,1,2,0\n0.1,1,2,5\n0.2,1,2,5\n0.3,1,2,0\n' > ttl.csv
"$cli" convert --csv ttl.csv --time-column 1 --trigger-columns 4 --unit mV --device Rig --into ttl.orvel
"$cli" info ttl.orvel | grep -q 'TTL  float64 \[1 x 2\]'
"$cli" export ttl.orvel --data DataConverted/Rig/Events/Series1/TTL --to ttl-out.csv
grep -qx 'Event1,0.1,0.3' ttl-out.csv
"$cli" info ttl.orvel | grep -q '@Unit = "mV"'
"$cli" convert --csv ttl.csv --time-column 1 --trigger-columns 4:x --device Rig --into bad.orvel && exit 1 ||
  test $? -eq 2
test ! -e bad.orvel
