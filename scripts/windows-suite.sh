#!/usr/bin/env bash
# Builds vrdppo.dll with the windows preset and proves it under Wine in a throw-away prefix:
# regsvr32 and the registry entries it writes, the VBScript suite by cscript, the type-library
# client, the VBScript blocks of README.md and docs/windows.md, then unregistering and the entries gone. Fails loudly where Wine cannot start.
set -euo pipefail
cd "$(dirname "$(realpath "$0")")/.."
root=$PWD
start=$(date +%s)
step() { echo "== $1: $(($(date +%s) - start)) s"; }
fail() { echo "windows-suite: FAILED: $*" >&2; exit 1; }

scripts/install-deps.sh windows

# The IDL generator of the host build where there is one; otherwise the windows build makes one.
generator=()
if [ -f build/normal/CMakeCache.txt ]; then
  cmake --build --preset normal --target vrdppo_idl >/dev/null
  generator=(-DVRDPPO_IDL_GENERATOR="$root/build/normal/tools/vrdppo_idl")
fi
cmake --preset windows "${generator[@]}" >/dev/null
cmake --build --preset windows
out=build/windows
gen=$out/generated
step "windows build"

# Exactly the four exports.
exports=$(x86_64-w64-mingw32-objdump -p $out/vrdppo.dll |
  awk '/\[Ordinal\/Name Pointer\] Table/ {t=1; next} t && /^[ \t]*\[/ {print $NF} t && /^$/ {t=0}' | sort)
expected=$(printf '%s\n' DllCanUnloadNow DllGetClassObject DllRegisterServer DllUnregisterServer)
[ "$exports" = "$expected" ] || fail "the DLL exports: $(echo $exports)"
echo "exports: $(echo $exports)"

wine=$(command -v wine64 || command -v wine || echo /usr/lib/wine/wine64)
[ -x "$wine" ] || fail "no wine64"
wineserver=$(command -v wineserver || echo /usr/lib/wine/wineserver)
export WINEPREFIX
WINEPREFIX=$(mktemp -d /tmp/vrdppo-wine.XXXXXX)
export WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=" WINEARCH=win64
cleanup() {
  WINEPREFIX=$WINEPREFIX "$wineserver" -k >/dev/null 2>&1 || true
  rm -rf "$WINEPREFIX"
}
trap cleanup EXIT
# One wineserver for the whole run: each Wine process would otherwise start it anew.
"$wineserver" -p
timeout 300 "$wine" wineboot -i >/dev/null 2>&1 || fail "Wine cannot start (wineboot failed)"
step "wine prefix"

dir=$WINEPREFIX/drive_c/vrdppo
mkdir -p "$dir"
cp $out/vrdppo.dll $out/typelib_client.exe tests/windows/suite.vbs "$gen/expected_typelib.txt" "$dir/"
win='C:\vrdppo'
run() { timeout 600 "$wine" "$@"; }

# HKEY_CLASSES_ROOT as reg export writes it (UTF-16), as UTF-8 text.
registry() {
  rm -f "$dir/hkcr.reg"
  run reg export HKEY_CLASSES_ROOT "$win\\hkcr.reg" /y >/dev/null 2>&1 ||
    fail "Wine cannot start (reg export failed)"
  iconv -f UTF-16LE -t UTF-8 "$dir/hkcr.reg" | tr -d '\r'
}
has_key() { grep -q -i -F "[HKEY_CLASSES_ROOT\\$1]" <<<"$reg"; }

run regsvr32 /s "$win\\vrdppo.dll" || fail "regsvr32 did not register the DLL"
mapfile -t classes < <(awk '$1 == "class" {print $2, $3, $4}' "$gen/expected_typelib.txt")
libid=$(awk '$1 == "library" {print $3}' "$gen/expected_typelib.txt")
[ ${#classes[@]} -eq 84 ] || fail "expected 84 classes, not ${#classes[@]}"
reg=$(registry)
missing=0
for c in "${classes[@]}"; do
  read -r name clsid iid <<<"$c"
  for key in "CLSID\\$clsid\\InprocServer32" "CLSID\\$clsid\\ProgID" "vrdppo.$name\\CLSID" \
             "Interface\\$iid\\TypeLib"; do
    has_key "$key" || { echo "missing: HKCR\\$key"; missing=1; }
  done
  grep -A3 -i -F "[HKEY_CLASSES_ROOT\\CLSID\\$clsid\\InprocServer32]" <<<"$reg" |
    grep -q '"ThreadingModel"="Apartment"' || { echo "not Apartment: $name"; missing=1; }
done
has_key "TypeLib\\$libid\\1.0\\0\\win64" || { echo "missing: the type library $libid"; missing=1; }
[ $missing -eq 0 ] || fail "registering left entries out"
# One class through reg query too: the server and the ProgID's link to its class.
read -r name clsid iid <<<"${classes[0]}"
run reg query "HKCR\\CLSID\\$clsid\\InprocServer32" | grep -q -i 'vrdppo.dll' ||
  fail "reg query: no InprocServer32 for $name"
run reg query "HKCR\\vrdppo.$name\\CLSID" | grep -q -i -F "$clsid" ||
  fail "reg query: vrdppo.$name does not name its CLSID"
echo "registered: ${#classes[@]} classes, their interfaces and the type library"
step "regsvr32"

status=0
# Wine's script host ends with status 0 on an error the script does not trap, and says nothing:
# the suite has passed only when its last line says so.
# The suite's run also writes the trace file, which the type-library client's (without the
# variable) must not.
vbs_out=$(VRDPPO_TRACE_FILE="$win\\trace.txt" run cscript //nologo "$win\\suite.vbs" \
  "$win\\expected_typelib.txt" "$win\\suite.db" | tr -d '\r') || true
echo "$vbs_out"
[ "$(tail -1 <<<"$vbs_out")" = "suite.vbs: passed" ] ||
  { echo "windows-suite: the VBScript suite failed" >&2; status=1; }
step "VBScript suite"
[ -f "$dir/trace.txt" ] || fail "VRDPPO_TRACE_FILE named a file the server did not write"
trace_lines() { grep -c -E "^[0-9-]{10} [0-9:.]{12} [0-9]+ vrdppo: .*$1" "$dir/trace.txt" || true; }
if [ "$(trace_lines 'ms.* SET QUOTED_IDENTIFIER OFF')" -lt 1 ] ||
   [ "$(trace_lines '\[sqlite .*suite.db\] SELECT ')" -lt 1 ]; then
  echo "windows-suite: the trace file lacks the suite's statements" >&2; status=1
fi
echo "trace file: $(wc -l <"$dir/trace.txt") lines"
size=$(wc -c <"$dir/trace.txt")
(unset VRDPPO_TRACE_FILE; run "$win\\typelib_client.exe" "$win\\expected_typelib.txt" "$win\\client.db") ||
  { echo "windows-suite: the type-library client failed" >&2; status=1; }
[ "$(wc -c <"$dir/trace.txt")" = "$size" ] ||
  { echo "windows-suite: a client without VRDPPO_TRACE_FILE wrote to the trace" >&2; status=1; }
step "type-library client"

# Each VBScript block marked wine in the pages, as the page gives it, on a new store in C:\plant;
# what it prints is compared with the page's text block marked wine after it (none: nothing). A
# line added at its end shows that it ran to there: the script host ends silently on an error.
pages=(README.md docs/windows.md)
blocks=0
for page in "${pages[@]}"; do
  base=$dir/$(basename "$page" .md)-
  awk -v base="$base" '
    /^```vb wine$/ {k++; f = base k ".vbs"; printf "" > f; next}
    /^```text wine$/ {f = base k ".txt"; printf "" > f; next}
    /^```/ {f = ""; next}
    f {print > f}' "$page"
  for vbs in "$base"*.vbs; do
    [ -f "$vbs" ] || continue
    blocks=$((blocks + 1))
    rm -rf "$WINEPREFIX/drive_c/plant" && mkdir -p "$WINEPREFIX/drive_c/plant"
    # Wine's script host has no AscW: one from Asc, which is enough for the small keys read here.
    { printf 'Function AscW(c)\r\n  AscW = Asc(c)\r\nEnd Function\r\n'; cat "$vbs"
      printf 'WScript.Echo "(the end)"\r\n'; } >"$dir/block.vbs"
    got=$(run cscript //nologo "$win\\block.vbs" | tr -d '\r') || true
    expected=$(cat "${vbs%.vbs}.txt" 2>/dev/null; echo "(the end)")
    if [ "$got" != "$expected" ]; then
      printf 'windows-suite: a VBScript block of %s printed:\n%s\n' "$page" "$got" >&2
      status=1
    fi
  done
done
[ $blocks -ge 2 ] || fail "expected the VBScript blocks of ${pages[*]}, found $blocks"
echo "VBScript blocks of the pages: $blocks"
step "the pages' VBScript blocks"

run regsvr32 /s /u "$win\\vrdppo.dll" || fail "regsvr32 /u did not unregister the DLL"
reg=$(registry)
left=0
for c in "${classes[@]}" "vrdppo $libid"; do
  for word in $c; do
    if grep '^\[' <<<"$reg" | grep -q -i -F -- "$word"; then echo "left behind: $word"; left=1; fi
  done
done
[ $left -eq 0 ] || fail "unregistering left entries behind"
run reg query "HKCR\\CLSID\\$clsid" >/dev/null 2>&1 && fail "reg query still finds $name"
echo "unregistered: no entry of the server is left"
step "regsvr32 /u"
[ $status -eq 0 ] || fail "see above"
echo "windows-suite: passed in $(($(date +%s) - start)) s"
