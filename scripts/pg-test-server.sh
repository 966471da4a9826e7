#!/bin/sh
# A throw-away PostgreSQL server for the tests: initdb into a temporary folder
# (as the package's postgres user when run as root), listening only on a Unix
# socket in that folder. "start" prints the folder; "stop FOLDER" stops the
# server and removes the folder. "halt FOLDER" stops it and keeps its data, as a
# server that goes down would; "resume FOLDER" starts it again on that data.
set -eu
bindir=$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -n 1)
if [ -z "$bindir" ]; then
  echo "PostgreSQL n'est pas installé (paquet postgresql)" >&2
  exit 1
fi
if [ "$(id -u)" -eq 0 ]; then as="runuser -u postgres --"; else as=""; fi
launch() {
  $as "$bindir/pg_ctl" -D "$1/data" -l "$1/server.log" -w \
    -o "-c listen_addresses='' -k $1 -c fsync=off -c synchronous_commit=off -c full_page_writes=off -c max_connections=200" \
    start >/dev/null
}
case "${1:-}" in
  start)
    dir=$(mktemp -d /tmp/orve-pg-XXXXXX)
    chmod 755 "$dir"
    [ -n "$as" ] && chown postgres "$dir"
    $as "$bindir/initdb" -D "$dir/data" -A trust -U postgres -E UTF8 --no-sync >"$dir/initdb.log" 2>&1
    launch "$dir"
    echo "$dir"
    ;;
  halt)
    # Fast: the clients' connections are cut at once, their transactions lost.
    $as "$bindir/pg_ctl" -D "$2/data" -m fast -w stop >/dev/null
    ;;
  resume)
    launch "$2"
    ;;
  stop)
    dir=$2
    $as "$bindir/pg_ctl" -D "$dir/data" -m immediate -w stop >/dev/null 2>&1 || true
    rm -rf "$dir"
    ;;
  *)
    echo "usage: pg-test-server.sh start | stop FOLDER | halt FOLDER | resume FOLDER" >&2
    exit 2
    ;;
esac
