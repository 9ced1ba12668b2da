#!/usr/bin/env bash
# Runs a fleet against nginx and the development server, each on loopback with a folder and a port of its own:
#   tests/fleet/run.sh PROGRAM_FOLDER SITE TENANT APP [options of quillon-fleet]
# SITE is a folder as `quillon-consent serve` takes it. nginx serves the configurations and passes everything else on.
# When the environment has KEEP set, the servers' logs and uploads stay in that folder.
set -euo pipefail
programs=$(readlink -f "$1") site=$(readlink -f "$2") tenant=$3 application=$4
shift 4

work=$(mktemp -d)
chmod 755 "$work"
started=()
finish() {
  [ ${#started[@]} = 0 ] || kill "${started[@]}" 2>/dev/null || true
  wait
  if [ -n "${KEEP:-}" ]; then mkdir -p "$KEEP" && cp -r "$work"/. "$KEEP"; fi
  rm -rf "$work"
}
trap finish EXIT

: >"$work/serve.log"
"$programs/quillon-consent" serve "$site" --port 0 --db "$work/uploads.db" >"$work/serve.log" &
started+=($!)
serve=$!
for _ in $(seq 100); do
  port=$(sed -n 's|^listening on http://127.0.0.1:\([0-9]*\)/$|\1|p' "$work/serve.log")
  [ -z "$port" ] || break
  sleep 0.1
done
[ -n "$port" ] || { echo "the development server did not start" >&2 && exit 1; }

# The first free port of a few; nginx ends at once when it cannot have one.
for _ in $(seq 20); do
  front=$((20000 + RANDOM % 12000))
  cat >"$work/nginx.conf" <<CONF
worker_processes 1;
daemon off;
pid $work/nginx.pid;
error_log $work/error.log;
events { worker_connections 1024; }
http {
  log_format fleet '\$request_method \$uri \$status \$request_length \$bytes_sent \$request_time';
  access_log $work/access.log fleet buffer=64k flush=1s;
  client_body_temp_path $work/body;
  proxy_temp_path $work/proxy;
  fastcgi_temp_path $work/fastcgi;
  uwsgi_temp_path $work/uwsgi;
  scgi_temp_path $work/scgi;
  default_type application/json;
  keepalive_requests 1000000;
  server {
    listen 127.0.0.1:$front;
    if (-f $work/outage) { return 503; }
    location /consent/ { root $site; }
    location / { proxy_pass http://127.0.0.1:$port; }
  }
}
CONF
  nginx -p "$work" -c "$work/nginx.conf" 2>"$work/nginx.err" &
  nginx=$!
  for _ in $(seq 50); do
    [ ! -s "$work/nginx.pid" ] || break
    kill -0 $nginx 2>/dev/null || break
    sleep 0.1
  done
  [ ! -s "$work/nginx.pid" ] || break
done
[ -s "$work/nginx.pid" ] || { cat "$work/nginx.err" >&2 && exit 1; }
started+=("$nginx")

# Processor time of a process and its children that still run, in hundredths of a second.
processor_time() { cat /proc/"$1"/stat $(pgrep -P "$1" | sed 's|.*|/proc/&/stat|') | awk '{sum += $14 + $15} END {print sum}'; }

status=0
"$programs/quillon-fleet" --cdn "http://127.0.0.1:$front/" --app "http://127.0.0.1:$front/" --tenant "$tenant" \
  --app-id "$application" --outage-file "$work/outage" --uploads "$work/uploads.db" "$@" || status=$?

front_time=$(processor_time $nginx)
serve_time=$(processor_time $serve)
kill -QUIT "$nginx" # which writes the last lines of its log
wait "$nginx" || true
awk -v front="$front_time" -v serve="$serve_time" '
  { ++n; up += $4; down += $5; ++status[$3]; if ($2 !~ /^\/consent\//) ++passed }
  END {
    printf "nginx: %d requests, %d bytes in, %d bytes out, %.1f us of processor each;", n, up, down, front * 1e4 / n
    printf " status"; for (s in status) printf " %s: %d", s, status[s]
    printf "\nserve: %d requests, %.1f us of processor each\n", passed, serve * 1e4 / (passed ? passed : 1)
  }' "$work/access.log"
exit $status
