#!/usr/bin/env bash
# Runs the T-SQL suite of a built preset (normal by default) against a server: the one
# VRDPPO_TSQL_CONNECT names, or else the test engine in ../shared/engines/tsql, started here.
#   scripts/tsql-suite.sh [PRESET]
set -euo pipefail
cd "$(dirname "$(realpath "$0")")/.."
preset=${1:-normal}
if [ -z "${VRDPPO_TSQL_CONNECT:-}" ]; then
  engine=${TSQL_ENGINE:-../shared/engines/tsql/start.sh}
  if [ ! -x "$engine" ]; then
    echo "no VRDPPO_TSQL_CONNECT and no engine at $engine" >&2
    exit 1
  fi
  VRDPPO_TSQL_CONNECT=$("$engine" | tail -1)
  # The pool's test restarts the engine under its kept connections.
  VRDPPO_TSQL_ENGINE=$(realpath "$engine")
  export VRDPPO_TSQL_CONNECT VRDPPO_TSQL_ENGINE
fi
echo "T-SQL suite against: $(sed 's/PWD=[^;]*/PWD=.../I' <<<"$VRDPPO_TSQL_CONNECT")"
ctest --preset "$preset" -L tsql --output-on-failure
