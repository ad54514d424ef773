#!/usr/bin/env bash
# Writes the demo recording and shows it.
set -euo pipefail
build=${1:-build}
demo="$build/demo.orvel"
"$build/cli/zarvi-cli" demo "$demo"
"$build/cli/zarvi-cli" info "$demo"
