#!/usr/bin/env bash
# `pipeline` end to end: the steps of a result of two runs are printed and saved, the saved
# pipeline run again on the raw signal gives the same values, and what no operation wrote
# has no pipeline.
set -uo pipefail
cli=$1 work=$2
rm -rf "$work" && mkdir -p "$work" && cd "$work" || exit 1
fail() { echo "FAILED: $*" >&2; exit 1; }
expect() { # expect CODE command...: runs the command and checks its exit code
  local code=$1; shift
  "$@" > out.txt 2> err.txt; local got=$?
  [ "$got" -eq "$code" ] || fail "$* exited $got, expected $code: $(cat err.txt)"
}
bio=DataAcquisition/FiberPhotometry/Signals/Series1/Biosensor/Signal

"$cli" demo demo.orvel > /dev/null || fail demo
decimated=$("$cli" run demo.orvel --operation Decimation --params '{"DecimationFactor": 10}' --data $bio 2>/dev/null) ||
  fail decimation
smoothed=$("$cli" run demo.orvel --operation "Smooth Signals" \
  --params '{"SmoothMethod": "Running Average", "SmoothTimeFrame(sec)": 0.05}' --data "$decimated" 2>/dev/null) ||
  fail smoothing

expect 0 "$cli" pipeline demo.orvel "$smoothed" --out saved.json
printf '%s\n' "1. Decimation — DecimationFactor = 10" \
  "2. Smooth Signals — SmoothMethod = Running Average, SmoothTimeFrame(sec) = 0.05" "from $bio" > expected.txt
cmp -s out.txt expected.txt || fail "steps: $(cat out.txt)"
expect 0 "$cli" pipeline demo.orvel "$smoothed"
cmp -s out.txt saved.json || fail "printed and saved pipelines differ: $(cat out.txt)"

again=$("$cli" run demo.orvel --pipeline saved.json --data $bio 2>/dev/null) || fail "run --pipeline"
[ "$again" != "$smoothed" ] || fail "the repeat wrote over the original"
"$cli" export demo.orvel --data "$smoothed" --to original.csv > /dev/null || fail export
"$cli" export demo.orvel --data "$again" --to repeated.csv > /dev/null || fail export
cmp -s <(tail -n +2 original.csv) <(tail -n +2 repeated.csv) || fail "the repeat gave other values"

expect 1 "$cli" pipeline demo.orvel $bio
grep -qx "Error: $bio is not the result of an operation: it records no Operations." err.txt ||
  fail "raw data: $(cat err.txt)"
expect 2 "$cli" pipeline demo.orvel
expect 2 "$cli" pipeline demo.orvel "$smoothed" --outfile x.json
echo OK
