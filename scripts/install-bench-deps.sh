#!/usr/bin/env bash
# Installs what the comparison with the Python tools needs: numpy, scipy, h5py and
# tifffile from Debian's packages, for the system's own python3.
set -euo pipefail
packages=(python3-numpy python3-scipy python3-h5py python3-tifffile)

bash "$(dirname "$0")/install-packages.sh" "${packages[@]}"
