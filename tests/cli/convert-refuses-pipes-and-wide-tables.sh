#!/usr/bin/env bash
# A pipe given as a source is refused, not waited on; a table of a million columns is
# refused at its first line and writes nothing.
set -uo pipefail
cli=$1 work=$2
rm -rf "$work" && mkdir -p "$work" && cd "$work" || exit 1
fail() { echo "FAILED: $*" >&2; exit 1; }

mkfifo pipe.csv || exit 1
"$cli" convert --csv pipe.csv --time-column 1 --device D --into piped.orvel > out.txt 2> err.txt
[ $? -eq 1 ] || fail "a pipe given with --csv is not refused"
grep -q "Error: pipe.csv is not a regular file (a pipe, a device or a socket); give a file." err.txt ||
    fail "the pipe is not named: $(cat err.txt)"
"$cli" convert pipe.csv --into piped.orvel > out.txt 2> err.txt
[ $? -eq 1 ] || fail "a pipe given as FILE is not refused"
grep -q "pipe.csv is not a regular file" err.txt || fail "the pipe is not named: $(cat err.txt)"
[ ! -e piped.orvel ] || fail "a refused pipe left a data file"

awk 'BEGIN { for (r = 0; r < 2; ++r) { printf "%d", r; for (c = 1; c <= 1000000; ++c) printf ",1"; print "" } }' \
    > wide.csv
"$cli" convert --csv wide.csv --time-column 1 --device D --into wide.orvel > out.txt 2> err.txt
[ $? -eq 1 ] || fail "a table of 1000001 columns is not refused"
grep -q "The table has 1000001 columns; at most 10000 can be converted." err.txt ||
    fail "the column count is not said: $(cat err.txt)"
if [ -e wide.orvel ]; then
    [ "$(stat -c %s wide.orvel)" -lt 1000000 ] || fail "the refused table grew the data file"
fi
exit 0
