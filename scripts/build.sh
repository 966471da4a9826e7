#!/bin/sh
# Configures and builds ORVE in build/ (programs, tests and benchmarks).
set -eu
cd "$(dirname "$0")/.."
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j "$(nproc)"
