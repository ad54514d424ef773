#!/usr/bin/env bash
# `convert FILE` with no format option: a .ppd is recognised from its content, described
# before writing and converted; unknown content is refused naming what was expected.
set -euo pipefail
cli=$1 work=$2
rm -rf "$work" && mkdir -p "$work" && cd "$work"
# pyPhotometry file by hand: header length, JSON header, then 4 samples of 2 channels,
# each word reading << 1 | digital bit. Channel 1 reads 2, 4, 6, 8 with its bit high on
# the 2nd and 3rd samples.
header='{"sampling_rate": 10, "mode": "2 colour continuous", "volts_per_division": [0.5, 0.5]}'
{
  printf "\\x$(printf %02x ${#header})\\x00"
  printf '%s' "$header"
  printf '\x04\x00\x00\x00\x09\x00\x00\x00\x0d\x00\x00\x00\x10\x00\x00\x00'
} > mouse.data
"$cli" convert mouse.data --into out.orvel 2> log.txt
grep -q 'Found in mouse.data (pyPhotometry):' log.txt
grep -q 'signal AIN1: 4 samples at 10 Hz' log.txt
grep -q 'events DIO1: 1' log.txt
"$cli" export out.orvel --data DataConverted/pyPhotometry/Signals/Series1/AIN1 --to ain1.csv
printf 'Time (s),AIN1 (V)\n0,1\n0.1,2\n0.2,3\n0.3,4\n' | cmp - ain1.csv
printf 'not a recording\x00\x01' > noise.bin
"$cli" convert noise.bin --into none.orvel 2> err.txt && exit 1 || test $? -eq 1
grep -q 'is not a recording this program reads' err.txt
test ! -e none.orvel
