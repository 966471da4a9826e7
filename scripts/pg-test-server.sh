#!/bin/sh
# A throw-away PostgreSQL server for the tests: initdb into a temporary folder
# (as the package's postgres user when run as root), listening only on a Unix
# socket in that folder. "start" prints the folder; "stop FOLDER" stops the
# server and removes the folder.
set -eu
bindir=$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -n 1)
if [ -z "$bindir" ]; then
  echo "PostgreSQL n'est pas installé (paquet postgresql)" >&2
  exit 1
fi
if [ "$(id -u)" -eq 0 ]; then as="runuser -u postgres --"; else as=""; fi
case "${1:-}" in
  start)
    dir=$(mktemp -d /tmp/orve-pg-XXXXXX)
    chmod 755 "$dir"
    [ -n "$as" ] && chown postgres "$dir"
    $as "$bindir/initdb" -D "$dir/data" -A trust -U postgres -E UTF8 --no-sync >"$dir/initdb.log" 2>&1
    $as "$bindir/pg_ctl" -D "$dir/data" -l "$dir/server.log" -w \
      -o "-c listen_addresses='' -k $dir -c fsync=off -c synchronous_commit=off -c full_page_writes=off -c max_connections=200" \
      start >/dev/null
    echo "$dir"
    ;;
  stop)
    dir=$2
    $as "$bindir/pg_ctl" -D "$dir/data" -m immediate -w stop >/dev/null 2>&1 || true
    rm -rf "$dir"
    ;;
  *)
    echo "usage: pg-test-server.sh start | stop FOLDER" >&2
    exit 2
    ;;
esac
