#!/usr/bin/env bash
# Installs what the comparison with the Python tools needs: numpy, scipy, h5py and
# tifffile from Debian's packages, for the system's own python3.
set -euo pipefail
packages=(python3-numpy python3-scipy python3-h5py python3-tifffile)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2> /dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
$sudo apt-get update
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y "${missing[@]}"
