#!/usr/bin/env bash
# Starts the application on the built-in demo recording (written into the
# temporary folder at start). Without a display it runs on a virtual one.
set -euo pipefail
build=${1:-build}
app="$build/app/zarvi"
if [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; then
  exec "$app" --demo
fi
echo "No display found: starting zarvi on a virtual X display (xvfb-run)."
exec xvfb-run -a "$app" --demo
