#!/usr/bin/env bash
# Runs the examples in other languages against a development server, each from an empty folder, and holds them to what the
# server received.
# usage: RunExamples.sh SOURCE_FOLDER PROGRAM_FOLDER C_LIBRARY
set -euo pipefail
source=$1 programs=$2 library=$3
work=$(mktemp -d)
exec {log}< <(exec "$programs/quillon-consent" serve "$source/examples/configuration" --port 0 --db "$work/uploads.db")
server=$!
trap 'kill "$server" 2>/dev/null || true; rm -rf "$work"' EXIT
read -r -t 20 -u "$log" line
url=${line#listening on }

runs=0
run() {
  local name=$1
  shift
  echo "== $name"
  "$@" "$url" "$work/$name" again >"$work/output" 2>&1 && { echo "$name did not ask, and says that it went well"; exit 1; }
  rm -rf "${work:?}/$name"
  "$@" "$url" "$work/$name" | tee "$work/output"
  grep -q ': granted$' "$work/output"
  grep -q '^uploaded$' "$work/output"
  "$@" "$url" "$work/$name" again >"$work/once-more"
  grep -q '^ready (from cache)$' "$work/once-more"
  grep -q ': granted$' "$work/once-more"
  runs=$((runs + 1))
}

run c "$programs/quillon-c-example"
for said in 'signal ad_storage=' 'change purpose 2 by user$' 'measuring$' 'history [0-9]*: user, uploaded$' 'receipt {"receipt":'; do
  grep -q "^$said" "$work/output" || { echo "the C example does not say $said"; exit 1; }
done
# A sanitizer's runtime would have to be loaded before Python's own program.
if [ -z "${SANITIZED:-}" ]; then run python python3 "$source/examples/python/consent.py" "$library"; fi
uploads=$("$programs/quillon-consent" serve --list --db "$work/uploads.db")
[ "$(grep -c '"status":0,' <<<"$uploads")" = $runs ]
