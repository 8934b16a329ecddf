#!/usr/bin/env bash
# A throwaway PostgreSQL cluster for the test run.
#
#   pg-test-cluster.sh start DIR [PORT]   a fresh cluster in DIR, started; prints its connection
#                                         string (without dbname) and writes it to DIR/conninfo
#   pg-test-cluster.sh stop DIR           the cluster in DIR stopped and DIR removed
#   pg-test-cluster.sh pause DIR [MODE]   the cluster in DIR stopped and kept (MODE: fast, the
#                                         default, or immediate: as if its computer went off)
#   pg-test-cluster.sh resume DIR         a paused cluster started again
#   pg-test-cluster.sh freeze DIR SECONDS the cluster in DIR stops answering for SECONDS (its
#                                         processes stopped, as a hung server's machine that still
#                                         answers the network), then goes on where it was
#
# The server listens on a unix socket in DIR only (no TCP), trusts that socket, and is tuned for
# tests: no fsync, enough connections for several running copies of the program per test with
# two tests at once. Run as root (as CI does), the cluster belongs to the `postgres` system user
# Debian's postgresql package creates; run as anyone else, to that user. The superuser of the
# cluster is always called postgres.
set -euo pipefail

usage() {
  echo "사용법: $0 start 폴더 [포트] | stop 폴더 | pause 폴더 [fast|immediate] | resume 폴더 | freeze 폴더 초" >&2
  exit 2
}

[ $# -ge 2 ] || usage
command=$1
dir=$2
port=${3:-}

# The newest PostgreSQL installed, as Debian lays it out.
pg_bin() {
  local candidate found=""
  # Versions sorted as versions, so 15 comes after 9.6.
  for candidate in $(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V); do
    [ -x "$candidate/initdb" ] && [ -x "$candidate/pg_ctl" ] && found=$candidate
  done
  if [ -z "$found" ]; then
    echo "PostgreSQL 서버 프로그램(initdb, pg_ctl)을 찾을 수 없습니다: /usr/lib/postgresql/*/bin" >&2
    echo "scripts/install-deps.sh 로 postgresql 패키지를 설치하십시오." >&2
    exit 1
  fi
  echo "$found"
}

# Runs a command as the owner of the cluster.
as_owner() {
  if [ "$(id -u)" -eq 0 ]; then
    runuser -u postgres -- "$@"
  else
    "$@"
  fi
}

# A port no one listens on; with no TCP listener it only names the socket file, but a free one
# keeps a later change to TCP harmless.
free_port() {
  local candidate
  for _ in $(seq 1 50); do
    candidate=$((20000 + RANDOM % 40000))
    if ! (exec 3<>"/dev/tcp/127.0.0.1/$candidate") 2>/dev/null; then
      echo "$candidate"
      return
    fi
  done
  echo "빈 포트를 찾지 못했습니다." >&2
  exit 1
}

stop_cluster() {
  local bin
  if [ -f "$dir/data/postmaster.pid" ]; then
    bin=$(pg_bin)
    as_owner "$bin/pg_ctl" -D "$dir/data" -m immediate -w stop >/dev/null 2>&1 || true
  fi
}

start() {
  local bin conninfo
  bin=$(pg_bin)
  if [ "$(id -u)" -eq 0 ] && ! id postgres >/dev/null 2>&1; then
    echo "root로 실행할 때는 postgres 사용자가 있어야 합니다(postgresql 패키지)." >&2
    exit 1
  fi
  # The socket's path must stay under the kernel's 107 bytes.
  if [ ${#dir} -gt 80 ]; then
    echo "클러스터 폴더의 경로가 너무 깁니다(80자 이하): $dir" >&2
    exit 1
  fi
  [ -n "$port" ] || port=$(free_port)

  # What a crashed run left behind goes first.
  stop_cluster
  rm -rf "$dir"
  mkdir -p "$dir"
  if [ "$(id -u)" -eq 0 ]; then chown postgres: "$dir"; fi
  chmod 0700 "$dir"

  as_owner "$bin/initdb" -D "$dir/data" -U postgres --auth-local=trust --auth-host=reject \
    --encoding=UTF8 --locale=C.UTF-8 --no-sync >"$dir/initdb.log" 2>&1 || {
    cat "$dir/initdb.log" >&2
    echo "initdb가 실패했습니다." >&2
    exit 1
  }
  cat >>"$dir/data/postgresql.conf" <<EOF

# A throwaway cluster for tests.
listen_addresses = ''
port = $port
unix_socket_directories = '$dir'
max_connections = 300
shared_buffers = 32MB
fsync = off
synchronous_commit = off
full_page_writes = off
max_locks_per_transaction = 128
log_min_messages = warning
EOF

  as_owner "$bin/pg_ctl" -D "$dir/data" -l "$dir/server.log" -w -t 60 start >/dev/null || {
    cat "$dir/server.log" >&2 || true
    echo "PostgreSQL 테스트 클러스터를 시작하지 못했습니다." >&2
    exit 1
  }

  conninfo="host=$dir port=$port user=postgres"
  # The cluster must answer and take the trigram extension, or the run stops here.
  if ! as_owner "$bin/psql" -X -q -v ON_ERROR_STOP=1 -d "$conninfo dbname=postgres" \
    -c "CREATE EXTENSION IF NOT EXISTS pg_trgm; DROP EXTENSION pg_trgm;" >/dev/null; then
    echo "테스트 클러스터가 응답하지 않거나 pg_trgm을 만들 수 없습니다(postgresql-contrib)." >&2
    exit 1
  fi
  echo "$conninfo" >"$dir/conninfo"
  chmod 0644 "$dir/conninfo"
  echo "$conninfo"
}

stop() {
  stop_cluster
  rm -rf "$dir"
}

pause() {
  local bin mode=${port:-fast}
  bin=$(pg_bin)
  as_owner "$bin/pg_ctl" -D "$dir/data" -m "$mode" -w -t 60 stop >/dev/null
}

resume() {
  local bin
  bin=$(pg_bin)
  as_owner "$bin/pg_ctl" -D "$dir/data" -l "$dir/server.log" -w -t 60 start >/dev/null
}

# The postmaster and every process it started, stopped together and let go on together: the thaw
# comes after the time asked whatever the caller does meanwhile.
freeze() {
  local seconds=${port:-5} postmaster pid stat pids
  postmaster=$(head -n 1 "$dir/data/postmaster.pid")
  if [ -r "/proc/$postmaster/task/$postmaster/children" ]; then
    pids="$postmaster $(cat "/proc/$postmaster/task/$postmaster/children")"
  else
    pids=$postmaster
    for stat in /proc/[0-9]*/stat; do
      pid=${stat#/proc/}
      pid=${pid%/stat}
      # The parent's number is the second field after the name's closing parenthesis.
      if [ "$(sed -e 's/^.*) //' "$stat" 2>/dev/null | cut -d ' ' -f 2)" = "$postmaster" ]; then
        pids="$pids $pid"
      fi
    done
  fi
  # shellcheck disable=SC2086
  kill -STOP $pids
  sleep "$seconds"
  # shellcheck disable=SC2086
  kill -CONT $pids
}

case "$command" in
  start) start ;;
  stop) stop ;;
  pause) pause ;;
  resume) resume ;;
  freeze) freeze ;;
  *) usage ;;
esac
