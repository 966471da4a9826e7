#!/bin/sh
# Installs what is missing, builds, and runs every test.
set -eu
root="$(cd "$(dirname "$0")/.." && pwd)"
"$root/scripts/install-deps.sh"
"$root/scripts/build.sh"
cd "$root/build"
QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j "$(nproc)"
