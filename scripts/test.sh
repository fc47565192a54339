#!/usr/bin/env bash
# Installs the dependencies, builds a preset (normal by default; sanitizer or release) and runs
# every test of it. "windows" builds vrdppo.dll and runs its suite under Wine instead.
set -euo pipefail
cd "$(dirname "$(realpath "$0")")/.."
preset=${1:-normal}
if [ "$preset" = windows ]; then
  exec scripts/windows-suite.sh
fi
scripts/install-deps.sh
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset"
ctest --preset "$preset"
