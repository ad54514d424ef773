#!/usr/bin/env bash
# The check the desktop application runs before opening a file: the kind on the first
# line, exit 0 only for a file to open; a text file and a cut-off data file are refused.
set -uo pipefail
cli=$1 work=$2
rm -rf "$work" && mkdir -p "$work" && cd "$work" || exit 1
"$cli" demo demo.orvel >/dev/null || exit 1
out=$("$cli" check demo.orvel) || { echo "check refused the demo file"; exit 1; }
[ "$(echo "$out" | head -1)" = data ] || { echo "unexpected: $out"; exit 1; }

echo text > plain.orvel
out=$("$cli" check plain.orvel) && { echo "check accepted a text file"; exit 1; }
[ "$(echo "$out" | head -1)" = unrecognized ] || { echo "unexpected: $out"; exit 1; }
echo "$out" | grep -q "File type is unrecognized." || { echo "no message: $out"; exit 1; }

head -c 3000 demo.orvel > cut.orvel
"$cli" check cut.orvel >/dev/null && { echo "check accepted a cut-off file"; exit 1; }
exit 0
