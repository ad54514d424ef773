#!/usr/bin/env bash
# A run killed with SIGKILL at a random moment never costs the file's data: afterwards
# `info` opens the file, and the file is either byte for byte what it was before the run
# (an unfinished run is rolled back by that first open), or holds the finished run's
# outputs with every dataset that was there before bit for bit as it was.
# One kind per call: "csv" converts a table of many columns into an existing file,
# "decimation" decimates many signals. The moments are drawn from a fixed seed, spread over
# the time one uninterrupted run takes here.
set -uo pipefail
cli=$1 work=$2 h5dump=$3 kind=$4 trials=${5:-20} columns=${6:-1000}
rm -rf "$work" && mkdir -p "$work" && cd "$work" || exit 1
fail() { echo "FAILED: $*" >&2; exit 1; }
RANDOM=$((4242 + ${#kind}))

# The file before the run: a small converted table, and for the decimation the wide one.
printf 'Time,Left,Right\n0,0.125,-3\n0.1,0.25,1e-300\n0.2,0.5,7.5\n' > small.csv
"$cli" convert --csv small.csv --time-column 1 --unit mV --device Bench --into base.orvel > /dev/null 2>&1 ||
  fail "small conversion"
awk -v n="$columns" 'BEGIN {
  printf "Time"; for (c = 1; c <= n; ++c) printf ",c%d", c; printf "\n"
  for (r = 0; r < 20; ++r) { printf "%g", r / 100; for (c = 1; c <= n; ++c) printf ",%d.%03d", c, r; printf "\n" }
}' > wide.csv
paths=()
output=Wide/
if [ "$kind" = decimation ]; then
  output=DecimatedSignals1/
  "$cli" convert --csv wide.csv --time-column 1 --device Wide --into base.orvel > /dev/null 2>&1 || fail "wide conversion"
  for c in $(seq 1 "$columns"); do paths+=("DataConverted/Wide/Signals/Series1/c$c/Signal"); done
  echo '{"DecimationFactor": 2}' > params.json
fi
run() { # run FILE: the run under test, in the background
  if [ "$kind" = csv ]; then
    "$cli" convert --csv wide.csv --time-column 1 --device Wide --into "$1" > /dev/null 2>&1 &
  else
    "$cli" run "$1" --operation Decimation --params params.json --data "${paths[@]}" > /dev/null 2>&1 &
  fi
}
# Every dataset of the file before the run, dumped with all the digits a double holds.
datasets=$("$h5dump" -n base.orvel | awk '$1 == "dataset" { print "-d"; print $2 }')
mapfile -t dumpArgs <<< "$datasets"
"$h5dump" -m %.17g "${dumpArgs[@]}" base.orvel | sed 1d > before.txt || fail "dump before"
[ "$(grep -c DATASET before.txt)" -ge 4 ] || fail "too few datasets in the file before the run"

# How long one whole run takes here, to spread the kills over it.
cp base.orvel full.orvel
start=$(date +%s%N); run full.orvel; wait $! || fail "an uninterrupted run failed"
span=$(( ($(date +%s%N) - start) / 1000000 ))
"$cli" info full.orvel > /dev/null || fail "an uninterrupted run left a file that does not open"

kept() { # kept FILE: every dataset of the file before the run is as it was
  "$h5dump" -m %.17g "${dumpArgs[@]}" "$1" | sed 1d > after.txt && cmp -s before.txt after.txt
}
restored=0 finished=0
for trial in $(seq 1 "$trials"); do
  cp base.orvel trial.orvel
  delay=$(( (RANDOM * 32768 + RANDOM) % (span + 1) ))
  run trial.orvel; pid=$!
  sleep "$(printf '%d.%03d' $((delay / 1000)) $((delay % 1000)))"
  kill -KILL "$pid" 2> /dev/null; wait "$pid" 2> /dev/null
  what="trial $trial (killed after $delay ms)"
  # The first open after the kill rolls an unfinished run back.
  "$cli" info trial.orvel > info.txt 2>&1 ||
    { cp trial.orvel "damaged-$trial.orvel"; fail "$what: the file does not open: $(head -c 400 info.txt)"; }
  leftovers=$(ls trial.orvel.* 2> /dev/null)
  [ -z "$leftovers" ] || fail "$what: files left next to the data file after an open: $leftovers"
  if cmp -s trial.orvel base.orvel; then
    restored=$((restored + 1))
    continue
  fi
  # Otherwise the run had finished: its outputs are there, and nothing old changed.
  grep -q "$output" info.txt || { cp trial.orvel "changed-$trial.orvel"; fail "$what: the file changed, but the run's outputs are not in it"; }
  kept trial.orvel || { cp trial.orvel "changed-$trial.orvel"; fail "$what: a dataset that was there changed"; }
  finished=$((finished + 1))
done
echo "$kind: $trials killed runs, all files open; $restored rolled back to the very bytes they had before, $finished had finished their run and kept every dataset that was there (a whole run takes $span ms)"
