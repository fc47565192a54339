#!/usr/bin/env bash
# The Python package as a user installs it: a fresh venv without the system's packages, pip
# offline, the library carried into the venv; then the module's suite run by the venv's
# interpreter, with no environment pointing at the library or the source.
#   tests/package/venv_install.sh SOURCE-DIR LIBRARY [PYTHON]
set -euo pipefail
root=$1
library=$2
python=${3:-python3}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$python" -m venv "$work/venv"
PYTHONDONTWRITEBYTECODE=1 "$work/venv/bin/pip" install --quiet --no-index \
  --disable-pip-version-check --config-settings "library=$library" "$root/python"
cd "$work"
env -u VRDPPO_LIBRARY -u PYTHONPATH VRDPPO_EXPECT_PREFIX="$work/venv" \
  "$work/venv/bin/python" -m unittest discover -s "$root/python/tests" -t "$root/python/tests"
