#!/usr/bin/env bash
# A text file given as a data file is refused with a non-zero exit.
set -uo pipefail
cli=$1 work=$2
rm -rf "$work" && mkdir -p "$work" && cd "$work" || exit 1
echo text > plain.orvel
"$cli" info plain.orvel && exit 1
exit 0
