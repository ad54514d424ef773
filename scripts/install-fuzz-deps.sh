#!/usr/bin/env bash
# Installs what `make fuzz` needs beyond scripts/install-deps.sh: clang 14 with its
# runtime libraries (libFuzzer, the sanitizers) and llvm-symbolizer for readable
# stack traces. Safe to run again: it touches apt only when something is missing.
set -euo pipefail

packages=(clang-14 libclang-rt-14-dev llvm-14)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done
if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

if [ "$(id -u)" -ne 0 ]; then
  SUDO=sudo
else
  SUDO=
fi
echo "Installing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update
$SUDO apt-get install -y --no-install-recommends "${missing[@]}"
