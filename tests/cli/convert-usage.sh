#!/usr/bin/env bash
# Usage errors of convert and export exit 2.
set -uo pipefail
cli=$1 work=$2
rm -rf "$work" && mkdir -p "$work" && cd "$work" || exit 1
check() { "$@" > /dev/null 2>&1; [ $? -eq 2 ] || { echo "FAILED: $*" >&2; exit 1; }; }
check "$cli" convert
check "$cli" convert --csv x.csv --rate 5 --device D --into x.orvel
check "$cli" convert --tiff x.tif --device D --sensor S --into x.orvel
check "$cli" export x.orvel --data A --to out.csv --frames 3:1
check "$cli" export x.orvel --to out.csv
exit 0
