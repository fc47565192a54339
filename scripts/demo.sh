#!/usr/bin/env bash
# Installs the dependencies, builds the release preset and runs `vrdppo demo` on a fresh
# embedded store (vrdppo-demo.db in the working directory).
set -euo pipefail
cd "$(dirname "$(realpath "$0")")/.."
scripts/install-deps.sh
cmake --preset release >/dev/null
cmake --build --preset release --target vrdppo_cli
build/release/tools/vrdppo demo
