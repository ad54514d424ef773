#!/usr/bin/env bash
# Runs zarvi-cli against the same work in numpy, scipy, h5py and tifffile and prints each
# ratio with its target (see compare_with_python.py). Installs the Python packages first.
# Usage: bench/python/run-python-comparison.sh [BUILD_DIR] [options of compare_with_python.py]
set -euo pipefail
build=${1:-build}
shift || true
here=$(cd "$(dirname "$0")" && pwd)
bash "$here/../../scripts/install-bench-deps.sh"
# The system's python3, where the Debian packages live, whatever else is first on PATH.
/usr/bin/python3 "$here/compare_with_python.py" "$build" "$@"
