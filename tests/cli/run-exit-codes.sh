#!/usr/bin/env bash
# `run` exit codes: success, usage, bad parameters (checked against the declarations
# before the file is opened), a refused file; a saved pipeline runs its steps in order.
set -uo pipefail
cli=$1 work=$2
rm -rf "$work" && mkdir -p "$work" && cd "$work" || exit 1
f=run-demo.orvel
s=DataAcquisition/FiberPhotometry/Signals/Series1/Biosensor/Signal
fail() { echo "FAILED: $*" >&2; exit 1; }
expect() { # expect CODE command...: runs the command and checks its exit code
  local code=$1; shift
  "$@" > out.txt 2> err.txt; local got=$?
  [ "$got" -eq "$code" ] || fail "$* exited $got, expected $code: $(cat err.txt)"
}

"$cli" demo $f > /dev/null || fail demo
expect 0 "$cli" run $f --operation Decimation --params '{"DecimationFactor": 10}' --data $s
grep -qx 'DataProcessed/FiberPhotometry/Signals/Series1/DecimatedSignals1/Biosensor/Signal' out.txt || fail output path
# The run's one source is recorded as a list of one, and `info` prints it as a list.
expect 0 "$cli" info $f
grep -q "@SourceDatapaths = \[\"$s\"\]$" out.txt || fail "one-element list: $(grep SourceDatapaths out.txt)"
expect 2 "$cli" run $f --operation Decimation --data
expect 3 "$cli" run $f --operation Decimation --params '{"Factor": 10}' --data $s
expect 3 "$cli" run $f --operation Decimation --params '{"DecimationFactor": 2.5}' --data $s
expect 3 "$cli" run $f --operation Nonexistent --data $s
expect 3 "$cli" run $f --operation Decimation --params '{"DecimationFactor": 0}' --data $s
grep -q 'Bad value for decimation factor.' err.txt || fail "range message: $(cat err.txt)"
expect 3 "$cli" run $f --operation Decimation --params '{}' --data $s
grep -q 'Parameter DecimationFactor is missing.' err.txt || fail "missing message: $(cat err.txt)"
expect 3 "$cli" run $f --operation Filter --params '{"FilterType": "Sideways", "LowCutoffFrequency": 2}' --data $s
grep -q 'FilterType.*LowPass, HighPass, BandPass, BandStop' err.txt || fail "choice message: $(cat err.txt)"
expect 3 "$cli" run $f --operation "Photometry deltaF/F" \
  --params '{"IsosbesticName": "Isosbestic", "BiosensorName": "Biosensor"}' --data $s
grep -q 'Parameter ResidualThreshold is missing.' err.txt || fail "required fit threshold: $(cat err.txt)"
echo text > plain.orvel
expect 4 "$cli" run plain.orvel --operation Decimation --params '{"DecimationFactor": 2}' --data $s
printf '[{"Operations": "Decimation", "DecimationFactor": 2}, {"Operations": "Decimation", "DecimationFactor": 5}]' > pipe.json
expect 0 "$cli" run $f --pipeline pipe.json --data $s
grep -q 'DecimatedSignals3/Biosensor/Signal' out.txt || fail pipeline
"$cli" info $f | grep -q 'Signal  float64 \[60000\]' || fail "decimated length"
# A source that is not in the file is an error even next to one that is, and nothing is written.
expect 1 "$cli" run $f --operation Decimation --params '{"DecimationFactor": 2}' --data $s No/Such/Signal
grep -q 'No/Such/Signal was not found' err.txt || fail "missing source: $(cat err.txt)"
# Refused runs leave the file as it was: no fourth output group.
"$cli" info $f | grep -q DecimatedSignals4 && fail "a refused run wrote"
exit 0
