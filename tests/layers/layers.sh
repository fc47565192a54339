#!/usr/bin/env bash
# Each layer of the library compiles against a view that holds only the layers beneath it: a
# header of its own and of a layer it stands on is found, one of a layer above it is not.
#   layers.sh CXX SOURCE_DIR BINARY_DIR
set -uo pipefail
cxx=$1 src=$2 bin=$3
failed=0
probe() {  # LAYER HEADER EXPECTED(found|missing)
  local out rc got=found
  out=$(printf '#include "%s"\n' "$2" |
    "$cxx" -std=c++20 -fsyntax-only -x c++ -I "$bin/layers/$1" -I "$bin/generated" - 2>&1)
  rc=$?
  [ $rc -eq 0 ] || got=missing
  if [ -n "$out" ] && ! grep -q "No such file" <<<"$out"; then got=broken; fi
  if [ "$got" != "$3" ]; then
    echo "layer $1: #include \"$2\" is $got, not $3"
    [ "$got" = broken ] && echo "$out" | head -5
    failed=1
  fi
}
# One header of each room, and what each layer must and must not see.
frame=frame/builtins.hpp odbc=providers/odbc/odbc_provider.hpp store=providers/embedded/catalog.hpp
classes=vrdppo/production/stems.hpp plant=plant/catalog.hpp check=check/procedure_calls.hpp
capi=vrdppo/vrdppo.h store_api=vrdppo/embedded_store.hpp
probe frame "$frame" found
for h in $odbc $store $classes $plant $check $store_api vrdppo/schema_check.hpp; do
  probe frame "$h" missing
done
probe providers "$store" found
for h in $classes $plant $check; do probe providers "$h" missing; done
probe classes "$classes" found
for h in $odbc $store $plant $check $store_api; do probe classes "$h" missing; done
probe check "$check" found
for h in $odbc $store $classes $plant; do probe check "$h" missing; done
probe plant "$plant" found
for h in $classes $check; do probe plant "$h" missing; done
for h in $store $classes $plant; do probe library "$h" found; done
probe capi "$capi" found
for h in $odbc $store $plant; do probe capi "$h" missing; done
exit $failed
