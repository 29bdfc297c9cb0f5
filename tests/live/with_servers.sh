#!/usr/bin/env bash
# Runs a program with database servers of its own:
#
#   with_servers.sh SERVER[,SERVER] PROGRAM [ARGUMENT...]      servers: postgresql mariadb
#
# They listen on private sockets in a temporary folder, on no port, and hold nothing but an empty
# database "joinery". They end with this script, however it ends; clusters of the system are never
# touched. Root hands each server to its package's user, since neither wants to run as root.
# The program finds them by:
#
#   JOINERY_LIVE_POSTGRESQL   folder of the socket; user "joinery", port 5432 (names the socket)
#   JOINERY_LIVE_MARIADB      path of the socket; user "joinery", no password
#
# Where a server is not installed, says so and ends with 77 (ctest: skipped); with
# JOINERY_REQUIRE_LIVE=1 that is a failure.
set -euo pipefail

wanted=$1
shift
here=$PWD
folder=$(mktemp -d /tmp/joinery-live.XXXXXX)
chmod 755 "$folder"
servers=()

# SIGINT has PostgreSQL disconnect its clients and stop at once; MariaDB takes SIGTERM for it.
stop_servers() {
    local server
    for server in "${servers[@]}"; do
        kill "-${server%%:*}" "${server##*:}" 2>/dev/null || true
    done
    for server in "${servers[@]}"; do
        wait "${server##*:}" 2>/dev/null || true
    done
    rm -rf "$folder"
}
trap stop_servers EXIT
trap 'exit 130' INT
trap 'exit 143' TERM HUP

missing() {
    if [ "${JOINERY_REQUIRE_LIVE:-}" = 1 ]; then
        echo "live: $1 is not installed, and JOINERY_REQUIRE_LIVE=1 asks for it" >&2
        exit 1
    fi
    echo "live: $1 is not installed; its tests are skipped"
    exit 77
}

# as USER COMMAND...: as that user when we are root. The signal reaches a server whose script was
# killed without a chance to clean up.
as() {
    local user=$1 identity=()
    shift
    if [ "$(id -u)" -eq 0 ]; then
        identity=(--reuid="$user" --regid="$user" --clear-groups)
    fi
    exec setpriv "${identity[@]}" --pdeathsig=TERM -- "$@"
}

# owned_folder NAME USER
owned_folder() {
    mkdir "$folder/$1"
    [ "$(id -u)" -ne 0 ] || chown "$2:$2" "$folder/$1"
}

# wait_for PID LOG COMMAND...: until the command works or the server has died.
wait_for() {
    local server=$1 log=$2 tries
    shift 2
    for tries in $(seq 300); do
        "$@" >/dev/null 2>&1 && return
        kill -0 "$server" 2>/dev/null || break
        sleep 0.1
    done
    echo "live: a server did not come up after $tries tries; its log:" >&2
    cat "$log" >&2
    exit 1
}

start_postgresql() {
    local bin data=$folder/postgresql/data log=$folder/postgresql.log
    bin=$(find /usr/lib/postgresql -path '*/bin/postgres' -printf '%h\n' 2>/dev/null |
        sort -V | tail -1)
    [ -n "$bin" ] || missing PostgreSQL
    owned_folder postgresql postgres
    (as postgres "$bin/initdb" --pgdata="$data" --username=joinery --auth=trust --encoding=UTF8 \
        --locale=C.UTF-8 --no-sync) >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
    as postgres "$bin/postgres" -D "$data" -F -c listen_addresses= \
        -c unix_socket_directories="$folder/postgresql" >>"$log" 2>&1 &
    servers+=("INT:$!")
    wait_for $! "$log" psql -h "$folder/postgresql" -U joinery -d postgres \
        -c 'CREATE DATABASE joinery'
    export JOINERY_LIVE_POSTGRESQL=$folder/postgresql
}

start_mariadb() {
    local data=$folder/mariadb/data log=$folder/mariadb.log socket=$folder/mariadb/socket server
    local settings=(--no-defaults --datadir="$data" --innodb-flush-log-at-trx-commit=0)
    server=$(PATH=$PATH:/usr/sbin command -v mariadbd) || missing MariaDB
    owned_folder mariadb mysql
    (as mysql mariadb-install-db "${settings[@]}" --auth-root-authentication-method=normal \
        --skip-test-db) >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
    as mysql "$server" "${settings[@]}" --skip-networking --socket="$socket" \
        --pid-file="$folder/mariadb/pid" --character-set-server=utf8mb4 >>"$log" 2>&1 &
    servers+=("TERM:$!")
    wait_for $! "$log" mariadb --no-defaults --socket="$socket" --user=root --execute \
        "CREATE USER joinery; GRANT ALL ON *.* TO joinery; CREATE DATABASE joinery"
    export JOINERY_LIVE_MARIADB=$socket
}

cd "$folder"  # which the servers' users may read
for server in ${wanted//,/ }; do
    "start_$server"
done
cd "$here"
"$@"
