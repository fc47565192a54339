#!/usr/bin/env bash
# Runs each libFuzzer harness of the fuzz preset on a copy of its committed corpus (the
# repository is never written), one at a time, and prints the executions of each.
#   scripts/fuzz.sh [-t SECONDS | -r RUNS] [HARNESS...]
# Defaults: 30 seconds each, every harness. Crashing inputs are kept in build/fuzz/artifacts/.
set -euo pipefail
root=$(cd "$(dirname "$(realpath "$0")")/.." && pwd)
build=${VRDPPO_FUZZ_BUILD:-$root/build/fuzz}
limit=(-max_total_time=30)
while getopts "t:r:" opt; do
  case $opt in
    t) limit=(-max_total_time="$OPTARG") ;;
    r) limit=(-runs="$OPTARG") ;;
    *) echo "usage: $0 [-t SECONDS | -r RUNS] [HARNESS...]" >&2; exit 2 ;;
  esac
done
shift $((OPTIND - 1))
harnesses=("$@")
if [ ${#harnesses[@]} -eq 0 ]; then
  harnesses=(record_state buffer dialect conversions state_text criteria)
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
artifacts=$build/artifacts
mkdir -p "$artifacts"
failed=0
for h in "${harnesses[@]}"; do
  exe=$build/fuzz/fuzz_$h
  [ -x "$exe" ] || { echo "$exe is missing: cmake --build --preset fuzz" >&2; exit 2; }
  cp -r "$root/fuzz/corpus/$h" "$work/$h"
  args=("${limit[@]}" -timeout=20 -rss_limit_mb=2048 -print_final_stats=1
        -artifact_prefix="$artifacts/$h-")
  [ -f "$root/fuzz/$h.dict" ] && args+=(-dict="$root/fuzz/$h.dict")
  start=$SECONDS
  if TMPDIR=$work "$exe" "${args[@]}" "$work/$h" >"$work/$h.log" 2>&1; then
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$work/$h.log")
    echo "fuzz_$h: ${runs:-?} executions in $((SECONDS - start)) s, no crash"
  else
    echo "fuzz_$h: FAILED after $((SECONDS - start)) s; input kept in $artifacts" >&2
    tail -n 60 "$work/$h.log" >&2
    failed=1
  fi
done
exit $failed
