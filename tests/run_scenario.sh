#!/bin/sh
# Runs one scenario on a fresh demo installation: run_scenario.sh ORVE ORVE_BATCH FILE
# With ORVE_TEST_STORE=postgres, the demo data go to a new database of the
# suite's PostgreSQL server (socket folder in ORVE_TEST_PG_SOCKET).
set -eu
orve=$1; batch=$2; scenario=$3
work=$(mktemp -d)
base=""
database=""
cleanup() {
  if [ -n "$database" ]; then
    psql -h "$ORVE_TEST_PG_SOCKET" -U postgres -d postgres -q \
      -c "DROP DATABASE IF EXISTS $database WITH (FORCE)" >/dev/null 2>&1 || true
  fi
  rm -rf "$work"
}
trap cleanup EXIT
export QT_QPA_PLATFORM=offscreen
export ORVE_TODAY="${ORVE_TODAY:-21/11/2026}"
if [ "${ORVE_TEST_STORE:-}" = postgres ]; then
  database="orve_s$$"
  psql -h "$ORVE_TEST_PG_SOCKET" -U postgres -d postgres -q -c "CREATE DATABASE $database" >/dev/null
  socket=$(printf '%s' "$ORVE_TEST_PG_SOCKET" | sed 's#/#%2F#g')
  base="postgresql://postgres@$socket/$database"
  "$batch" init-demo "$work/inst" --base "$base" >/dev/null
else
  "$batch" init-demo "$work/inst" >/dev/null
fi
# Relative paths in a scenario land in its own scratch folder; "usb" stands for a medium.
mkdir "$work/usb"
cd "$work"
"$orve" --home "$work/inst" --scenario "$scenario"
