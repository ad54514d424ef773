#!/usr/bin/env bash
# `rename` and `compact` end to end: a result takes its new name with its data, names and
# paths that cannot be renamed change nothing, compacting keeps everything `info` shows and
# prints the true sizes, and a file that is no data file is left byte for byte as it was.
set -uo pipefail
cli=$1 work=$2 h5dump=$3
rm -rf "$work" && mkdir -p "$work" && cd "$work" || exit 1
fail() { echo "FAILED: $*" >&2; exit 1; }
expect() { # expect CODE command...: runs the command and checks its exit code
  local code=$1; shift
  "$@" > out.txt 2> err.txt; local got=$?
  [ "$got" -eq "$code" ] || fail "$* exited $got, expected $code: $(cat err.txt)"
}
series=DataProcessed/Miniscope/Images/Series1
stack=DataAcquisition/Miniscope/Images/Series1/Sensor1/ImageStack

"$cli" demo demo.orvel > /dev/null || fail demo
echo '{"CropCoordinates": [10, 20, 100, 50]}' > crop.json
"$cli" run demo.orvel --operation Crop --params crop.json --data $stack > /dev/null 2>&1 || fail crop

expect 0 "$cli" rename demo.orvel $series/CroppedImages1 "Cropped soma"
[ "$(cat out.txt)" = "$series/Cropped soma" ] || fail "new path: $(cat out.txt)"
"$h5dump" -a "$series/Cropped soma/Sensor1/ImageStack/Width" demo.orvel | grep -q '(0): 100' ||
  fail "the stack did not move with its attributes"

cp demo.orvel before.orvel
expect 1 "$cli" rename demo.orvel "$series/Cropped soma" "a/b"
grep -qx 'Error: A name cannot contain /.' err.txt || fail "slash: $(cat err.txt)"
expect 1 "$cli" rename demo.orvel "$series/Cropped soma" ""
grep -qx 'Error: The new name is empty.' err.txt || fail "empty: $(cat err.txt)"
expect 1 "$cli" rename demo.orvel "$series/Cropped soma/Sensor1/Time" Clock
expect 1 "$cli" rename demo.orvel DataAcquisition/Miniscope Scope
expect 2 "$cli" rename demo.orvel "$series/Cropped soma"
cmp -s demo.orvel before.orvel || fail "a refused rename changed the file"

"$cli" info demo.orvel > info-before.txt || fail info
size_before=$(stat -c %s demo.orvel)
expect 0 "$cli" compact demo.orvel
grep -qx "size before: $size_before bytes (.*)" out.txt || fail "size before: $(cat out.txt)"
grep -qx "size after: $(stat -c %s demo.orvel) bytes (.*)" out.txt || fail "size after: $(cat out.txt)"
"$cli" info demo.orvel > info-after.txt || fail info
diff info-before.txt info-after.txt > /dev/null || fail "compacting changed the content"

echo "plain text" > notes.orvel
expect 1 "$cli" compact notes.orvel
grep -q '^Error: Failed to repack file notes.orvel\.' err.txt || fail "message: $(cat err.txt)"
[ "$(cat notes.orvel)" = "plain text" ] || fail "the failed file changed"
expect 2 "$cli" compact
[ -z "$(ls -A | grep compacting)" ] || fail "a new file stayed behind: $(ls -A)"
exit 0
