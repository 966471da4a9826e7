#!/bin/sh
# Installs the Debian packages ORVE needs to build, run and test, only those missing.
set -eu
packages="build-essential cmake pkg-config
qt6-base-dev qt6-translations-l10n libqt6sql6-sqlite libqt6sql6-psql qt6-charts-dev libqt6opengl6-dev postgresql
libcurl4-openssl-dev libsodium-dev libsqlite3-dev
libgtest-dev libbenchmark-dev
ccache poppler-utils python3-aiosmtpd fonts-liberation2 xvfb xauth clang-format"
missing=""
for p in $packages; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing="$missing $p"
  fi
done
if [ -n "$missing" ]; then
  echo "Installation des paquets manquants :$missing"
  if [ "$(id -u)" -ne 0 ]; then sudo=sudo; else sudo=; fi
  $sudo apt-get update
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y --no-install-recommends $missing
fi
