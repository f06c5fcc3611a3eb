#!/usr/bin/env bash
# A private MariaDB server for the tests, on loopback only.
#
#   mariadb-pruebas.sh start DIR [server options...]
#   mariadb-pruebas.sh stop DIR
#   mariadb-pruebas.sh reanuda DIR
#
# start creates a fresh data directory under DIR, starts the server on
# 127.0.0.1 on a free port with its own socket and pid file under DIR and
# lower_case_table_names=1 (extra server options come after DIR and win, e.g.
# --lower-case-table-names=0), waits until it answers and writes
# "mariadb://ADMIN@127.0.0.1:PORT/" to DIR/url: ADMIN is an account with every
# right and no password, made when the data directory is, so the tests' orders
# carry the user they expect. The grant tables are on: the tests of accounts
# and roles need the server to check them. stop shuts it down and waits. reanuda
# starts it again on the data directory and port it had (after it was killed,
# say), without wiping anything.
set -euo pipefail

uso() {
    echo "uso: $0 start DIR [opciones del servidor...] | stop DIR | reanuda DIR" >&2
    exit 2
}

[ $# -ge 2 ] || uso
accion=$1
dir=$2
shift 2
mkdir -p "$dir"
dir=$(cd "$dir" && pwd)
pidfile=$dir/mariadb.pid
socket=$dir/mariadb.sock
datos=$dir/datos
log=$dir/error.log

servidor() {
    local b
    for b in mariadbd mysqld; do
        if command -v "$b" >/dev/null 2>&1; then
            command -v "$b"
            return
        fi
        if [ -x "/usr/sbin/$b" ]; then
            echo "/usr/sbin/$b"
            return
        fi
    done
    echo "No se encontró el servidor MariaDB (mariadbd); instale mariadb-server." >&2
    exit 1
}

vivo() {
    [ -f "$pidfile" ] && kill -0 "$(cat "$pidfile")" 2>/dev/null
}

para() {
    rm -f "$dir/url"
    if ! vivo; then
        rm -f "$pidfile"
        return 0
    fi
    local pid
    pid=$(cat "$pidfile")
    kill -TERM "$pid" 2>/dev/null || true
    for _ in $(seq 1 120); do
        kill -0 "$pid" 2>/dev/null || break
        sleep 0.5
    done
    if kill -0 "$pid" 2>/dev/null; then
        echo "El servidor MariaDB de prueba (pid $pid) no se detuvo a tiempo; se termina." >&2
        kill -KILL "$pid" 2>/dev/null || true
        sleep 1
    fi
    rm -f "$pidfile" "$socket"
}

puerto_libre() {
    python3 -c 'import socket
s = socket.socket()
s.bind(("127.0.0.1", 0))
print(s.getsockname()[1])
s.close()' 2>/dev/null && return
    local p
    for _ in $(seq 1 200); do
        p=$((20000 + RANDOM % 40000))
        if ! (exec 3<>"/dev/tcp/127.0.0.1/$p") 2>/dev/null; then
            echo "$p"
            return
        fi
    done
    echo "No se encontró un puerto libre en 127.0.0.1." >&2
    exit 1
}

arranca() {
    local bin usuario puerto
    bin=$(servidor)
    usuario=$(id -un)
    para
    rm -rf "$datos"
    mkdir -p "$datos"
    if ! mariadb-install-db --no-defaults --auth-root-authentication-method=normal \
        --datadir="$datos" --user="$usuario" --skip-test-db \
        --lower-case-table-names=1 "$@" >"$dir/install.log" 2>&1; then
        echo "No se pudo preparar el directorio de datos de MariaDB; vea $dir/install.log" >&2
        tail -n 20 "$dir/install.log" >&2 || true
        exit 1
    fi
    puerto=$(puerto_libre)
    echo "$puerto" >"$dir/puerto"
    lanza "$puerto" "$@"
    # Over TCP the server sees 127.0.0.1, which root@localhost does not cover.
    mariadb --no-defaults --socket="$socket" -uroot -e \
        "CREATE USER 'ADMIN'@'127.0.0.1'; GRANT ALL ON *.* TO 'ADMIN'@'127.0.0.1' WITH GRANT OPTION"
}

# Starts the server on the existing data directory and waits until it answers.
lanza() {
    local bin usuario puerto
    bin=$(servidor)
    usuario=$(id -un)
    puerto=$1
    shift
    : >"$log"
    setsid "$bin" --no-defaults --datadir="$datos" --socket="$socket" --pid-file="$pidfile" \
        --port="$puerto" --bind-address=127.0.0.1 --user="$usuario" \
        --skip-name-resolve --skip-log-bin \
        --innodb-buffer-pool-size=64M --innodb-log-file-size=16M \
        --innodb-flush-log-at-trx-commit=2 --skip-innodb-doublewrite \
        --character-set-server=utf8mb4 --collation-server=utf8mb4_general_ci \
        --log-error="$log" --lower-case-table-names=1 "$@" </dev/null >/dev/null 2>&1 &
    for _ in $(seq 1 120); do
        if mariadb-admin --no-defaults --socket="$socket" -uroot \
            --connect-timeout=2 ping >/dev/null 2>&1; then
            echo "mariadb://ADMIN@127.0.0.1:$puerto/" >"$dir/url"
            echo "Servidor MariaDB de prueba en 127.0.0.1:$puerto (datos en $datos)"
            return 0
        fi
        sleep 0.5
    done
    echo "El servidor MariaDB de prueba no respondió a tiempo; vea $log" >&2
    tail -n 20 "$log" >&2 || true
    para
    exit 1
}

reanuda() {
    [ -d "$datos" ] && [ -f "$dir/puerto" ] || {
        echo "No hay un servidor de prueba que reanudar en $dir." >&2
        exit 1
    }
    local puerto
    puerto=$(cat "$dir/puerto")
    # A killed server may linger as a zombie that kill -0 still finds: ask it.
    if mariadb-admin --no-defaults --protocol=tcp -h127.0.0.1 -P"$puerto" -uADMIN \
        --connect-timeout=2 ping >/dev/null 2>&1; then
        echo "mariadb://ADMIN@127.0.0.1:$puerto/" >"$dir/url"
        return 0
    fi
    rm -f "$pidfile" "$socket"
    lanza "$puerto" "$@"
}

case $accion in
start) arranca "$@" ;;
stop) para ;;
reanuda) reanuda "$@" ;;
*) uso ;;
esac
