#!/usr/bin/env bash
# Puts the SQLite amalgamation (sqlite3.c, sqlite3.h) for the Windows build into DIR, taken from a
# pinned release of an npm package that ships it, and checks every file by its SHA-256. Debian
# carries no SQLite for MinGW. A DIR that already holds the checked files is left as it is.
# Usage: scripts/fetch-sqlite.sh DIR
set -euo pipefail
dir=${1:?usage: fetch-sqlite.sh DIR}
package=better-sqlite3
version=11.10.0  # SQLite 3.49.2
tarball_sha=71e2d66a44dafc35649ff82742cf4908557fc31841108d19703b74b7065c0293
declare -A file_sha=(
  [sqlite3.c]=e80215754ac6cfaefe272342efd581b6dbefdbdc21f96bd83fcb698bee9d36a5
  [sqlite3.h]=2198c66d4c59ae86421590c27fd53309ec14a595ae31c0c7143247444018a0bd
)

checked() {
  local f
  for f in "${!file_sha[@]}"; do
    [ -f "$dir/$f" ] || return 1
    echo "${file_sha[$f]}  $dir/$f" | sha256sum --quiet -c - >/dev/null 2>&1 || return 1
  done
}

if checked; then exit 0; fi
command -v npm >/dev/null || { echo "fetch-sqlite: npm is missing (apt-get install npm)" >&2; exit 1; }
mkdir -p "$dir"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
(cd "$work" && npm pack --loglevel=error "$package@$version" >/dev/null) ||
  { echo "fetch-sqlite: npm could not fetch $package@$version" >&2; exit 1; }
archive="$work/$package-$version.tgz"
echo "$tarball_sha  $archive" | sha256sum --quiet -c - || {
  echo "fetch-sqlite: $package-$version.tgz does not have the pinned SHA-256" >&2
  exit 1
}
tar -xzf "$archive" -C "$work" package/deps/sqlite3/sqlite3.c package/deps/sqlite3/sqlite3.h
for f in "${!file_sha[@]}"; do cp "$work/package/deps/sqlite3/$f" "$dir/$f"; done
checked || { echo "fetch-sqlite: the extracted files do not have the pinned SHA-256" >&2; exit 1; }
echo "fetch-sqlite: SQLite from $package $version in $dir"
