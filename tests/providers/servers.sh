#!/usr/bin/env bash
# Runs a command with PostgreSQL and MariaDB servers of its own:
#
#     servers.sh COMMAND [ARGUMENT...]
#
# A second PostgreSQL, whose tables the first can show as its own, is in ZRQRYBLD_TEST_POSTGRESQL_SECOND. All servers listen on loopback, on free ports, and keep everything in a temporary folder. They run as the
# current user, or as the users of their packages when that is root, because neither server runs as root. They
# stop with this script, however it ends: each is told by the kernel when its parent dies. Servers that the
# machine runs anyway are not touched.
#
# The command finds the connection strings in ZRQRYBLD_TEST_POSTGRESQL and ZRQRYBLD_TEST_MARIADB. Where a
# server cannot be had, the variable is not set and ZRQRYBLD_TEST_..._MISSING says why. ZRQRYBLD_TEST_..._PROCESS is the
# server's process: a test that has the servers to itself may stop one.
set -uo pipefail

folder=$(mktemp -d "${TMPDIR:-/tmp}/zrqrybld-servers-XXXXXX") || exit 1
chmod 755 "$folder"  # the servers' users pass through it
started=()

stop_servers() {
  local process
  trap - EXIT HUP INT TERM
  # The fast way down; nothing in the folder is wanted any more.
  for process in "${started[@]}"; do kill -QUIT "$process" 2>/dev/null || true; done
  for process in "${started[@]}"; do
    for _ in $(seq 50); do
      kill -0 "$process" 2>/dev/null || break
      sleep 0.1
    done
    kill -KILL "$process" 2>/dev/null || true
    wait "$process" 2>/dev/null
  done
  rm -rf "$folder"
}
trap stop_servers EXIT
trap 'stop_servers; exit 129' HUP
trap 'stop_servers; exit 130' INT
trap 'stop_servers; exit 143' TERM

# Usage: own USER FOLDER. Makes the folder, for the user that will run the server.
own() {
  mkdir -p "$2" && chmod 700 "$2"
  [ "$(id -u)" != 0 ] || chown "$1" "$2"
}

# Usage: as USER COMMAND... Replaces the shell that calls it: by the command as that user when this is root, as
# the current one otherwise. The command is told to end when this script does.
as() {
  local user=$1
  shift
  local become=()
  if [ "$(id -u)" = 0 ]; then
    become=("--reuid=$user" "--regid=$(id -g "$user")" --init-groups)
  fi
  exec env HOME="$folder" setpriv "${become[@]}" --pdeathsig QUIT -- "$@"
}

free_port() {
  python3 -c 'import socket; s = socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])'
}

# Usage: wait_until PROCESS COMMAND... True as soon as the command succeeds, false when the process is gone.
wait_until() {
  local process=$1
  shift
  for _ in $(seq 300); do
    kill -0 "$process" 2>/dev/null || return 1
    "$@" >/dev/null 2>&1 && return 0
    sleep 0.1
  done
  return 1
}

# A program of the server's package: where Debian puts it, or anywhere on the path.
find_program() {
  local found
  found=$(ls -d /usr/lib/postgresql/*/bin/"$1" /usr/sbin/"$1" 2>/dev/null | sort -V | tail -n 1)
  [ -n "$found" ] || found=$(command -v "$1") || return 1
  printf '%s' "$found"
}

# These return 1 with the reason in `missing`.

# Usage: start_postgresql VARIABLE
start_postgresql() {
  local initdb postgres psql data=$folder/$1 log=$folder/$1.log port attempt process
  missing="PostgreSQL is not installed"
  initdb=$(find_program initdb) && postgres=$(find_program postgres) && psql=$(find_program psql) || return 1
  missing="there is no user postgres"
  [ "$(id -u)" != 0 ] || id postgres >/dev/null 2>&1 || return 1
  own postgres "$data"
  missing="initdb failed"
  (as postgres "$initdb" -D "$data" -U tester -A trust --locale=C.UTF-8 -E UTF8) >"$log" 2>&1 ||
    { cat "$log" >&2; return 1; }
  # One user has a password, for the tests of wrong ones.
  sed -i '1i host all locked 127.0.0.1/32 scram-sha-256' "$data/pg_hba.conf"
  missing="the server does not start"
  for attempt in 1 2 3; do  # another program may take the port first
    port=$(free_port)
    (as postgres "$postgres" -D "$data" -p "$port" -c listen_addresses=127.0.0.1 \
        -c unix_socket_directories="$data" -c fsync=off) >>"$log" 2>&1 </dev/null &
    process=$!
    if wait_until "$process" "$psql" -X -h 127.0.0.1 -p "$port" -U tester -d postgres -c 'SELECT 1'; then
      started+=("$process")
      missing="its database cannot be made"
      "$psql" -X -q -v ON_ERROR_STOP=1 -h 127.0.0.1 -p "$port" -U tester -d postgres \
        -c "CREATE ROLE locked LOGIN PASSWORD 'right'" -c 'CREATE DATABASE zr_test' >>"$log" 2>&1 ||
        { cat "$log" >&2; return 1; }
      export "$1=Driver={PostgreSQL Unicode};Server=127.0.0.1;Port=$port;Database=zr_test;UID=tester" "$1_PROCESS=$process"
      return 0
    fi
    kill -QUIT "$process" 2>/dev/null
    wait "$process" 2>/dev/null
  done
  cat "$log" >&2
  return 1
}

start_mariadb() {
  local install server client data=$folder/mariadb log=$folder/mariadb.log port attempt process user_option=()
  missing="MariaDB is not installed"
  install=$(command -v mariadb-install-db) && server=$(find_program mariadbd) && client=$(command -v mariadb) || return 1
  missing="there is no user mysql"
  if [ "$(id -u)" = 0 ]; then
    id mysql >/dev/null 2>&1 || return 1
  fi
  own mysql "$data"
  own mysql "$data-temporary"  # a server that starts removes what others have in a shared folder
  missing="mariadb-install-db failed"
  (as mysql "$install" --no-defaults --datadir="$data" --auth-root-authentication-method=normal \
      --skip-test-db) >"$log" 2>&1 || { cat "$log" >&2; return 1; }
  missing="the server does not start"
  for attempt in 1 2 3; do
    port=$(free_port)
    (as mysql "$server" --no-defaults --datadir="$data" --bind-address=127.0.0.1 --port="$port" \
        --socket="$data/socket" --pid-file="$data/pid" --character-set-server=utf8mb4 \
        --tmpdir="$data-temporary" --innodb-flush-log-at-trx-commit=0) >>"$log" 2>&1 </dev/null &
    process=$!
    if wait_until "$process" "$client" --no-defaults -h 127.0.0.1 -P "$port" -u root -e 'SELECT 1'; then
      started+=("$process")
      missing="its database cannot be made"
      "$client" --no-defaults -h 127.0.0.1 -P "$port" -u root -e "
          CREATE DATABASE zr_test CHARACTER SET utf8mb4; CREATE DATABASE zrXtest;
          CREATE USER tester@'%' IDENTIFIED BY ''; GRANT ALL ON *.* TO tester@'%';
          CREATE USER tester@localhost IDENTIFIED BY ''; GRANT ALL ON *.* TO tester@localhost;
          CREATE USER locked@'%' IDENTIFIED BY 'right'; CREATE USER locked@localhost IDENTIFIED BY 'right'" \
        >>"$log" 2>&1 || { cat "$log" >&2; return 1; }
      ZRQRYBLD_TEST_MARIADB="Driver={MariaDB Unicode};Server=127.0.0.1;Port=$port;Database=zr_test;UID=tester"
      export ZRQRYBLD_TEST_MARIADB ZRQRYBLD_TEST_MARIADB_PROCESS=$process
      return 0
    fi
    kill -QUIT "$process" 2>/dev/null
    wait "$process" 2>/dev/null
  done
  cat "$log" >&2
  return 1
}

[ $# -gt 0 ] || { printf 'Usage: %s COMMAND [ARGUMENT...]\n' "$0" >&2; exit 2; }
missing=""
start_postgresql ZRQRYBLD_TEST_POSTGRESQL || export ZRQRYBLD_TEST_POSTGRESQL_MISSING="$missing"
start_postgresql ZRQRYBLD_TEST_POSTGRESQL_SECOND || true
start_mariadb || export ZRQRYBLD_TEST_MARIADB_MISSING="$missing"

# In the background, so that a signal reaches this script while it waits.
setpriv --pdeathsig TERM -- "$@" <&0 &
command=$!
wait "$command"
status=$?
exit "$status"
