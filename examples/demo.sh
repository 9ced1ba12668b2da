#!/usr/bin/env bash
# Runs the plain example application against a development server, and once more from its cache; succeeds only if the
# server received the expected requests. Then runs the news reader: interactively with a display, else by itself, saving
# pictures in build/demo.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."

work=$(mktemp -d)
database=$work/uploads.db
exec {log}< <(exec build/release/bin/quillon-consent serve examples/configuration --port 0 --db "$database")
server=$!
started=("$server")
trap 'kill "${started[@]}" 2>/dev/null || true; rm -rf "$work"' EXIT

fail() {
  echo "demo: $*" >&2
  exit 1
}

# The requests logged since the last call. The server logs before it responds, so those of an ended run are complete.
requests() {
  local line
  while read -r -t 0 -u "$log" && read -r -u "$log" line; do echo "$line"; done
}

run_host() {
  build/release/bin/quillon-plain-host --app-url "$url" --cdn-url "$url" --vendor-url "$url" --data-dir "$work/data" \
    --language de --expect "$1"
}

read -r -t 20 -u "$log" line || fail "the server did not start"
url=${line#listening on }
echo "development server on $url"

echo
echo "== first run"
run_host first
seen=$(requests)
echo "-- what the server was asked"
echo "$seen"
grep -q '^GET /consent/.*/config_de\.json 200$' <<<"$seen" || fail "the German configuration was not fetched"
grep -q '^POST /vantari/.* 200$' <<<"$seen" || fail "no consents were uploaded"

uploads=$(build/release/bin/quillon-consent serve --list --db "$database")
echo "-- what the server received"
echo "$uploads"
[ "$(grep -c '"status":0,' <<<"$uploads")" = 1 ] || fail "expected one accepted upload"

echo
echo "== second run"
run_host again
seen=$(requests)
echo "-- what the server was asked"
echo "${seen:-(nothing)}"
! grep -q '/consent/mobile_banner/' <<<"$seen" || fail "the configuration was asked for although it is cached"

echo
echo "== news reader, whose uploads go to a receiver"
printf 'demo-tenant news-reader sample-access-token\n' >"$work/tokens"
exec {receiver_log}< <(exec build/release/bin/quillon-receiver --store "$work/decisions" --tokens "$work/tokens" \
  --listen 127.0.0.1:0)
started+=($!)
read -r -t 20 -u "$receiver_log" line || fail "the receiver did not start"
receiver=$(sed -n 's|.*"address":"\([^"]*\)".*|\1|p' <<<"$line")
exec {reader_log}< <(exec build/release/bin/quillon-consent serve examples/configuration --port 0 \
  --uploads-to "http://$receiver")
started+=($!)
read -r -t 20 -u "$reader_log" line || fail "the server did not start"
reader=(build/release/bin/quillon-newsreader --server "${line#listening on }" --data "$work/reader")
if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
  echo "answer the banner, look around, and close the window"
  "${reader[@]}"
else
  pictures=build/demo
  rm -rf "$pictures"
  mkdir -p "$pictures" "$work/runtime"
  chmod 700 "$work/runtime"
  export QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software XDG_RUNTIME_DIR=$work/runtime
  # The browser's sandbox does not work for the super-user; the tour opens only our own page.
  [ "$(id -u)" != 0 ] || export QTWEBENGINE_CHROMIUM_FLAGS="--no-sandbox --disable-gpu"
  "${reader[@]}" --language en --tour "$pictures" || fail "the news reader did not get through its screens"
  ls "$pictures"/*.png
  build/release/bin/quillon-consent store --data-dir "$work/reader" get 2 | grep -qx '"granted"' ||
    fail "what was switched on and saved is not granted"
fi
subject=$(build/release/bin/quillon-consent store --data-dir "$work/reader" get SUBJECT_ID | tr -d '"')
echo "-- what the receiver has of this subject"
build/release/bin/quillon-receiver export --store "$work/decisions" "$subject" | tee "$work/export"
build/release/bin/quillon-receiver stats --store "$work/decisions"
[ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] || grep -q '"purpose":"2","status":"granted"' "$work/export" ||
  fail "the choices did not arrive"

kill "$server"
wait "$server" || fail "the server did not end cleanly"
echo
echo "demo: everything happened as it should"
