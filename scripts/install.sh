#!/usr/bin/env bash
# Installs the dependencies, builds the release preset's libraries and tool and installs them,
# with the headers and the CMake and pkg-config packages, under PREFIX.
#   scripts/install.sh PREFIX
set -euo pipefail
if [ $# -ne 1 ]; then
  echo "usage: scripts/install.sh PREFIX" >&2
  exit 2
fi
prefix=$1
cd "$(dirname "$(realpath "$0")")/.."
scripts/install-deps.sh
cmake --preset release >/dev/null
cmake --build --preset release --target vrdppo_shared vrdppo_static vrdppo_cli
cmake --install build/release --prefix "$prefix" >/dev/null
echo "installed under $prefix: bin/vrdppo, lib/libvrdppo.so, include/vrdppo/"
