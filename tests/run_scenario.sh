#!/bin/sh
# Runs one scenario on a fresh demo installation: run_scenario.sh ORVE ORVE_BATCH FILE
set -eu
orve=$1; batch=$2; scenario=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export QT_QPA_PLATFORM=offscreen
export ORVE_TODAY="${ORVE_TODAY:-21/11/2026}"
"$batch" init-demo "$work/inst" >/dev/null
# Relative paths in a scenario land in its own scratch folder; "usb" stands for a medium.
mkdir "$work/usb"
cd "$work"
"$orve" --home "$work/inst" --scenario "$scenario"
