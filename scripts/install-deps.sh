#!/usr/bin/env bash
# Installs what the build, the tests and the demo need, from Debian's packages. With the argument
# "windows", also what the Windows build and its suite under Wine need.
set -euo pipefail
packages=(g++ cmake make pkg-config git ca-certificates
          libsqlite3-dev sqlite3 unixodbc unixodbc-dev odbcinst libsqliteodbc tdsodbc libltdl-dev zlib1g-dev
          libfmt-dev libgtest-dev libgmock-dev googletest libbenchmark-dev
          libcli11-dev nlohmann-json3-dev freetds-bin
          python3 python3-pip python3-venv
          clang-14 libclang-rt-14-dev)
if [ "${1:-}" = windows ]; then
  # MinGW-w64 with posix threads, widl, the IDL files to import, Wine, and npm for the pinned
  # SQLite amalgamation (scripts/fetch-sqlite.sh).
  packages+=(g++-mingw-w64-x86-64-posix mingw-w64-tools libwine-dev wine64)
  # Any npm will do (a machine may have Node.js from elsewhere, whose npm Debian's conflicts with).
  command -v npm >/dev/null || packages+=(npm)
fi
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
# The benchmarks' peer library: installed where the archive has it, the build going on without.
optional=()
for p in libsoci-dev libboost-dev; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || optional+=("$p")
done
if [ ${#missing[@]} -eq 0 ] && [ ${#optional[@]} -eq 0 ]; then
  exit 0
fi
echo "installing: ${missing[*]}"
sudo=""
if [ "$(id -u)" -ne 0 ]; then sudo="sudo"; fi
$sudo apt-get update -qq
if [ ${#missing[@]} -gt 0 ]; then
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi
if [ ${#optional[@]} -gt 0 ]; then
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends \
    "${optional[@]}" >/dev/null || echo "not installed (the benchmarks run without SOCI): ${optional[*]}"
fi
