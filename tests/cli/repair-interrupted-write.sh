#!/usr/bin/env bash
# A file whose superblock records an end of allocation short of its real end (what a write
# killed half-way leaves) is refused with a message that names `repair`; the repair writes a
# copy that opens with every dataset as it was, and never changes the file itself. A file
# holding an object whose header never reached the disk gets a copy without that object,
# and the repair names it.
set -uo pipefail
cli=$1 work=$2 h5dump=$3
rm -rf "$work" && mkdir -p "$work" && cd "$work" || exit 1
fail() { echo "FAILED: $*" >&2; exit 1; }

printf 'Time,Left,Right\n0,0.125,-3\n0.1,0.25,1e-300\n0.2,0.5,7.5\n' > table.csv
"$cli" convert --csv table.csv --time-column 1 --device Bench --into good.orvel > /dev/null 2>&1 ||
  fail "conversion"
"$h5dump" -m %.17g good.orvel | sed 1d > good.txt
# Superblock version 0 with 8-byte addresses: the end of allocation is the third address,
# at byte 24 + 2 * 8 = 40. Record 1024 bytes, far less than the file holds.
[ "$(od -An -tu1 -j8 -N1 good.orvel | tr -d ' ')" = 0 ] || fail "expected superblock version 0"
cp good.orvel damaged.orvel
printf '\x00\x04\x00\x00\x00\x00\x00\x00' | dd of=damaged.orvel bs=1 seek=40 conv=notrunc status=none
cp damaged.orvel before-repair.orvel

"$cli" info damaged.orvel > info.txt 2> err.txt && fail "the damaged file opened"
grep -q 'looks damaged by an interrupted write' err.txt || fail "message: $(cat err.txt)"
grep -q 'zarvi-cli repair damaged.orvel --into COPY.orvel' err.txt || fail "no repair command: $(cat err.txt)"

"$cli" repair damaged.orvel > out.txt 2>&1; [ $? -eq 2 ] || fail "usage"
"$cli" repair damaged.orvel --into repaired.orvel > out.txt 2>&1 || fail "repair: $(cat out.txt)"
cmp -s damaged.orvel before-repair.orvel || fail "the repair changed the damaged file itself"
[ "$(stat -c %s repaired.orvel)" = "$(stat -c %s damaged.orvel)" ] || fail "the copy has another size"
"$cli" info repaired.orvel > /dev/null || fail "the repaired copy does not open"
"$h5dump" -m %.17g repaired.orvel | sed 1d > repaired.txt
cmp -s good.txt repaired.txt || fail "the repaired copy holds other data than the file before the damage"
# The end of allocation now reads as the file's size, little-endian.
[ "$(od -An -tu8 -j40 -N8 repaired.orvel | tr -d ' ')" = "$(stat -c %s repaired.orvel)" ] ||
  fail "end of allocation not restored"

# Refusals leave nothing behind: a copy that exists, an undamaged file.
"$cli" repair damaged.orvel --into repaired.orvel > out.txt 2>&1 && fail "overwrote a copy"
grep -q 'exists already' out.txt || fail "existing copy: $(cat out.txt)"
"$cli" repair good.orvel --into other.orvel > out.txt 2>&1 && fail "repaired a sound file"
grep -q 'shows no damage' out.txt || fail "sound file: $(cat out.txt)"
[ ! -e other.orvel ] || fail "a copy of a sound file was left"

# A second conversion stands for the run that was killed: the header of one of its datasets
# is overwritten as if it had never been written.
cp good.orvel late.orvel
"$cli" convert --csv table.csv --time-column 1 --device Late --into late.orvel > /dev/null 2>&1 ||
  fail "second conversion"
late=DataConverted/Late/Signals/Series1/Left/Signal
address=$("$(dirname "$h5dump")/h5ls" -v "late.orvel/$late" | awk '$1 == "Location:" { split($2, a, ":"); print a[2] }')
[ -n "$address" ] || fail "no address for $late"
printf '\xff' | dd of=late.orvel bs=1 seek="$address" conv=notrunc status=none
cp late.orvel late-before.orvel
"$cli" info late.orvel > info.txt 2> err.txt && fail "a file with an unreadable object listed"
grep -q 'looks damaged by an interrupted write' err.txt || fail "unreadable object: $(cat err.txt)"
"$cli" repair late.orvel --into late-repaired.orvel > out.txt 2>&1 || fail "repair: $(cat out.txt)"
cmp -s late.orvel late-before.orvel || fail "the repair changed the damaged file itself"
grep -q "left out, unreadable .*: 1\$" out.txt && grep -qx "  $late" out.txt || fail "left out: $(cat out.txt)"
"$cli" info late-repaired.orvel > info.txt || fail "the rebuilt copy does not open"
"$h5dump" -m %.17g -g /DataConverted/Bench late-repaired.orvel | sed 1d > kept.txt
"$h5dump" -m %.17g -g /DataConverted/Bench good.orvel | sed 1d > expected.txt
cmp -s expected.txt kept.txt || fail "the rebuilt copy changed data that was there before"
"$h5dump" -m %.17g -a Created late-repaired.orvel | sed 1d > kept.txt
"$h5dump" -m %.17g -a Created good.orvel | sed 1d > expected.txt
cmp -s expected.txt kept.txt || fail "the rebuilt copy lost the root's attributes"
"$h5dump" -d /DataConverted/Late/Signals/Series1/Right/Signal late-repaired.orvel > /dev/null ||
  fail "the rebuilt copy lost a readable dataset of the late run"
exit 0
