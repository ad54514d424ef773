#!/usr/bin/env bash
# Ctrl-C (SIGINT) at a random moment of a run, start-up included: the program exits 130 and
# leaves the file holding exactly the objects and values it held before (no empty group, no
# output of an earlier step of a pipeline), or the run had already finished and exits 0.
# One kind per call: "pipeline" runs a two-step pipeline (Decimation, then Smooth Signals)
# on many signals, "csv" converts a table of many columns into an existing file.
set -uo pipefail
cli=$1 work=$2 h5dump=$3 kind=$4 trials=${5:-12} columns=${6:-600}
rm -rf "$work" && mkdir -p "$work" && cd "$work" || exit 1
fail() { echo "FAILED: $*" >&2; exit 1; }
RANDOM=$((777 + ${#kind}))

awk -v n="$columns" 'BEGIN {
  printf "Time"; for (c = 1; c <= n; ++c) printf ",c%d", c; printf "\n"
  for (r = 0; r < 40; ++r) { printf "%g", r / 100; for (c = 1; c <= n; ++c) printf ",%d.%03d", c, r; printf "\n" }
}' > wide.csv
"$cli" convert --csv wide.csv --time-column 1 --device Wide --into base.orvel > /dev/null 2>&1 || fail "wide conversion"
paths=()
for c in $(seq 1 "$columns"); do paths+=("DataConverted/Wide/Signals/Series1/c$c/Signal"); done
cat > pipeline.json << 'JSON'
[{"Operations": "Decimation", "DecimationFactor": 2},
 {"Operations": "Smooth Signals", "SmoothMethod": "Running Average", "SmoothTimeFrame(sec)": 0.05}]
JSON
run() { # run FILE: the run under test, in the background
  if [ "$kind" = csv ]; then
    "$cli" convert --csv wide.csv --time-column 1 --device Again --into "$1" > /dev/null 2> err.txt &
  else
    "$cli" run "$1" --pipeline pipeline.json --data "${paths[@]}" > /dev/null 2> err.txt &
  fi
}
# The file's objects, and every value, dumped with all the digits a double holds.
snapshot() { "$h5dump" -n "$1" | sed 1d && "$h5dump" -m %.17g "$1" | sed 1d; }
snapshot base.orvel > before.txt || fail "dump before"

# How long one whole run takes here, to spread the interrupts over it.
cp base.orvel full.orvel
start=$(date +%s%N); run full.orvel; wait $! || fail "an uninterrupted run failed: $(cat err.txt)"
span=$(( ($(date +%s%N) - start) / 1000000 ))

cancelled=0 finished=0
for trial in $(seq 1 "$trials"); do
  cp base.orvel trial.orvel
  # The first interrupt comes during start-up, every third one near the end, where a run
  # commits and a late cancel must not be reported as one.
  draw=$(( RANDOM * 32768 + RANDOM ))
  if [ "$trial" -eq 1 ]; then delay=$(( draw % 5 ))
  elif [ $((trial % 3)) -eq 0 ]; then delay=$(( span * 3 / 4 + draw % (span / 4 + 1) ))
  else delay=$(( draw % (span + 1) )); fi
  run trial.orvel; pid=$!
  sleep "$(printf '%d.%03d' $((delay / 1000)) $((delay % 1000)))"
  kill -INT "$pid" 2> /dev/null; wait "$pid"; code=$?
  what="trial $trial (interrupted after $delay ms)"
  if [ "$code" -eq 130 ]; then
    snapshot trial.orvel > after.txt || fail "$what: the file does not open"
    cmp -s before.txt after.txt ||
      { cp trial.orvel "changed-$trial.orvel"; fail "$what: a cancelled run changed the file: $(diff before.txt after.txt | head -5)"; }
    cancelled=$((cancelled + 1))
  elif [ "$code" -eq 0 ]; then
    finished=$((finished + 1))
  else
    fail "$what: exited $code: $(head -c 400 err.txt)"
  fi
  leftovers=$(ls trial.orvel.* 2> /dev/null)
  [ -z "$leftovers" ] || fail "$what: files left next to the data file: $leftovers"
done
[ "$cancelled" -gt 0 ] || fail "no run was interrupted in time (a whole run takes $span ms)"
echo "$kind: $trials interrupted runs; $cancelled exited 130 with the file as it was, $finished had finished (a whole run takes $span ms)"
