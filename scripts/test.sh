#!/bin/sh
# Installs what is missing, builds, and runs every test: once on SQLite files,
# once on a throw-away PostgreSQL server started (and removed) here.
set -eu
root="$(cd "$(dirname "$0")/.." && pwd)"
"$root/scripts/install-deps.sh"
"$root/scripts/build.sh"
cd "$root/build"
jobs="$(nproc)"
status=0
echo "== Tests sur fichiers SQLite"
QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j "$jobs" || status=1

echo "== Tests sur serveur PostgreSQL"
server=$("$root/scripts/pg-test-server.sh" start)
trap '"$root/scripts/pg-test-server.sh" stop "$server"' EXIT INT TERM
ORVE_TEST_STORE=postgres ORVE_TEST_PG_SOCKET="$server" QT_QPA_PLATFORM=offscreen \
  ctest --output-on-failure -j "$jobs" || status=1
exit "$status"
