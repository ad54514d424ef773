#!/usr/bin/env bash
# Installs the Debian 12 packages the project needs. Safe to run again:
# it touches apt only when something is missing.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config git
  qt6-base-dev qt6-base-dev-tools libqt6opengl6-dev libgl-dev qt6-svg-dev
  libhdf5-dev hdf5-tools
  libopencv-dev
  libarmadillo-dev libopenblas-dev libsuperlu-dev
  libnlopt-cxx-dev
  libavformat-dev libavcodec-dev libavutil-dev libswscale-dev ffmpeg
  libtiff-dev libtiff-tools
  zlib1g-dev zip
  libqcustomplot-dev
  libxlsxwriter-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  fonts-lato fonts-font-awesome python3-qdarkstyle
  xvfb xauth
)

bash "$(dirname "$0")/install-packages.sh" "${packages[@]}"
