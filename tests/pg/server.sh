#!/usr/bin/env bash
# A private PostgreSQL server for the tests: its own folder, a Unix socket
# only (no TCP port), trust for local connections, stopped at the end.
#   server.sh start DIR   starts it (a leftover server in DIR is stopped first)
#   server.sh stop DIR    stops it and removes DIR
#   server.sh resume DIR  starts the server that start made in DIR, keeping its
#                         databases (nothing to do when it is running)
#   server.sh halt DIR    stops it and keeps DIR for a later resume
set -euo pipefail
action=$1
dir=$2
bin=$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -1)
[ -n "$bin" ] || { echo "PostgreSQL no está instalado (make deps lo instala)" >&2; exit 1; }

# initdb refuses root: the server runs as Debian's postgres user.
as_owner() {
    if [ "$(id -u)" = 0 ]; then runuser -u postgres -- "$@"; else "$@"; fi
}

launch() {
    # Tests only: durability is the server's own business, not what they prove.
    as_owner "$bin/pg_ctl" -D "$dir/data" -l "$dir/server.log" -w -t 60 \
        -o "-c listen_addresses='' -c unix_socket_directories='$dir' -c fsync=off \
            -c synchronous_commit=off -c full_page_writes=off -c max_connections=200" \
        start >/dev/null || { cat "$dir/server.log" >&2; exit 1; }
}

case "$action" in
start)
    if [ -f "$dir/data/postmaster.pid" ]; then
        as_owner "$bin/pg_ctl" -D "$dir/data" -m immediate stop >/dev/null 2>&1 || true
    fi
    rm -rf "$dir"
    mkdir -p "$dir"
    [ "$(id -u)" = 0 ] && chown postgres: "$dir"
    as_owner "$bin/initdb" -D "$dir/data" -U postgres -A trust -E UTF8 --locale=C.UTF-8 \
        >"$dir/initdb.log" 2>&1 || { cat "$dir/initdb.log" >&2; exit 1; }
    launch
    echo "Servidor PostgreSQL de pruebas en $dir"
    ;;
resume)
    [ -f "$dir/data/PG_VERSION" ] || { echo "No hay un servidor de pruebas en $dir" >&2; exit 1; }
    if ! as_owner "$bin/pg_ctl" -D "$dir/data" status >/dev/null 2>&1; then
        launch
    fi
    echo "Servidor PostgreSQL de pruebas en $dir"
    ;;
halt)
    if as_owner "$bin/pg_ctl" -D "$dir/data" status >/dev/null 2>&1; then
        as_owner "$bin/pg_ctl" -D "$dir/data" -m fast -w stop >/dev/null
    fi
    ;;
stop)
    if [ -f "$dir/data/postmaster.pid" ]; then
        as_owner "$bin/pg_ctl" -D "$dir/data" -m fast -w stop >/dev/null
    fi
    rm -rf "$dir"
    ;;
*)
    echo "uso: $0 start|stop|resume|halt DIR" >&2
    exit 2
    ;;
esac
