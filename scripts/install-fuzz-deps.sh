#!/usr/bin/env bash
# Installs what `make fuzz` needs beyond scripts/install-deps.sh: clang 14 with its
# runtime libraries (libFuzzer, the sanitizers) and llvm-symbolizer for readable
# stack traces. Safe to run again: it touches apt only when something is missing.
set -euo pipefail

packages=(clang-14 libclang-rt-14-dev llvm-14)

bash "$(dirname "$0")/install-packages.sh" "${packages[@]}"
