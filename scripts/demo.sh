#!/bin/sh
# Installs what is missing, builds, creates the demo installation if there is
# none, and opens ORVE on it.
set -eu
root="$(cd "$(dirname "$0")/.." && pwd)"
"$root/scripts/install-deps.sh"
"$root/scripts/build.sh"
home="${ORVE_DEMO:-$root/demo}"
if [ ! -f "$home/chemin_base.txt" ]; then
  "$root/build/orve-batch" init-demo "$home"
fi
exec "$root/build/orve" --home "$home"
