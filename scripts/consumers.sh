#!/usr/bin/env bash
# Installs a build into a scratch prefix and uses it from outside, as a user would: a C++
# project through find_package, a C program through pkg-config, and the Python module installed
# with pip, each run against a fresh embedded store.
#   scripts/consumers.sh BUILD-DIR [PYTHON]
set -euo pipefail
root=$(cd "$(dirname "$(realpath "$0")")/.." && pwd)
build=$(cd "$1" && pwd)
python=${2:-python3}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix

cmake --install "$build" --prefix "$prefix" >/dev/null

echo "== C++ through find_package"
cmake -S "$root/examples/cpp" -B "$work/cpp" -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$work/cpp" >/dev/null
"$work/cpp/stems_report" "$work/cpp.db"

echo "== C through pkg-config"
export PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name vrdppo.pc)")
# The libdir goes into -rpath as it is: a clean path, found from where the .pc lies, that is the
# prefix's own library directory.
pc_libdir=$(pkg-config --variable=libdir vrdppo)
case $pc_libdir in
  *//*) echo "pkg-config's libdir has a \"//\": $pc_libdir" >&2; exit 1 ;;
esac
if [ "$(cd "$pc_libdir" && pwd -P)" != "$(cd "$(dirname "$PKG_CONFIG_PATH")" && pwd -P)" ]; then
  echo "pkg-config's libdir $pc_libdir is not $(dirname "$PKG_CONFIG_PATH")" >&2
  exit 1
fi
# shellcheck disable=SC2046
cc -Wall -Wextra -Werror -std=c99 "$root/examples/c/stems_count.c" \
   $(pkg-config --cflags --libs vrdppo) -Wl,-rpath,"$(pkg-config --variable=libdir vrdppo)" \
   -o "$work/stems_count"
# The store the C++ program filled.
"$work/stems_count" "$work/cpp.db" | tee "$work/c.out"
grep -q "run 77: 2 stems" "$work/c.out"

echo "== C through pkg-config --static"
# libvrdppo.a with what it needs, as pkg-config --static names it (unixODBC's libltdl among them).
# shellcheck disable=SC2046
cc -std=c99 "$root/examples/c/stems_count.c" -o "$work/stems_count_static" \
   $(pkg-config --cflags --static --libs vrdppo | sed 's/-lvrdppo /-l:libvrdppo.a /')
"$work/stems_count_static" "$work/cpp.db" | grep -q "run 77: 2 stems"

echo "== Python through pip"
libdir=$(pkg-config --variable=libdir vrdppo)
cp -r "$root/python" "$work/python-src"  # pip builds in the tree it is given
"$python" -m pip install --quiet --no-build-isolation --no-index --disable-pip-version-check \
  --target "$libdir/python" "$work/python-src" 2>&1 | grep -v 'Running pip as the' || true
test -f "$libdir/python/vrdppo/__init__.py"
cd "$work"
env -u VRDPPO_LIBRARY PYTHONPATH="$libdir/python" VRDPPO_EXPECT_PREFIX="$prefix" \
  "$python" -m unittest discover -s "$root/python/tests"
