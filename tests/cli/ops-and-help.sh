#!/usr/bin/env bash
# `ops` lists every operation by family; `help NAME` prints what its declaration says.
set -euo pipefail
cli=$1 work=$2
rm -rf "$work" && mkdir -p "$work" && cd "$work"
"$cli" ops > ops.txt
grep -qx 'Signal' ops.txt
grep -qx '  Photometry deltaF/F' ops.txt
grep -qx 'Analysis' ops.txt
grep -qx '  Perievents' ops.txt
"$cli" help "Photometry deltaF/F" > help.txt
grep -q '^Photometry deltaF/F' help.txt
grep -q 'ResidualThreshold.*number.*required' help.txt
grep -q 'default 0.5' help.txt
grep -q 'StandardizeMethod.*one of Standard Z Score, Modified Z Score' help.txt
grep -q 'SmoothTimeFrame(sec) (number; s;' help.txt
grep -q 'DFFSignals<K>' help.txt
"$cli" help Decimation | grep -q 'DecimationFactor.*integer.*between 1 and 1000000'
if "$cli" help Nonexistent 2> err.txt; then exit 1; fi
grep -q 'Nonexistent' err.txt
