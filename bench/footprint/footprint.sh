#!/usr/bin/env bash
# The SDK's cost for a host application: size, memory, idle wake-ups, and system calls on the thread that calls setup.
#   bench/footprint/footprint.sh BUILD-FOLDER [SECONDS OF IDLENESS]
set -euo pipefail
bin=$1/bin seconds=${2:-60}
site=$(dirname "$(readlink -f "$0")")/../../examples/configuration
work=$(mktemp -d)
trap 'kill $server; wait; rm -rf "$work"' EXIT
: >"$work/log"
"$bin/quillon-consent" serve "$site" --port 0 >"$work/log" &
server=$!
until url=$(sed -n 's/^listening on //p' "$work/log") && [ -n "$url" ]; do sleep 0.1; done

size() { stat -c %s "$bin/$1"; }
echo "size: $(($(size quillon-footprint) - $(size quillon-footprint-bare))) bytes added"

"$bin/quillon-footprint" 0 "$work/data" "$url" >/dev/null # downloads
read -r bare _ < <("$bin/quillon-footprint-bare" 1)
read -r with wakes < <("$bin/quillon-footprint" "$seconds" "$work/data" "$url")
echo "memory: $((with - bare)) KiB added (private; $bare without, $with with)"
if [ -x "$bin/quillon-footprint-screens" ]; then
  export QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software
  read -r bare _ < <("$bin/quillon-footprint-screens-bare" 1)
  read -r with _ < <("$bin/quillon-footprint-screens" 3 "$work/data" "$url")
  echo "memory of an application with a Qt Quick window and the preference centre: $((with - bare)) KiB added" \
    "(private; $bare without the SDK, $with with)"
fi
echo "wake-ups of its threads in $seconds idle seconds: $wakes"

strace -f -o "$work/trace" "$bin/quillon-footprint" 0 "$work/data" "$url" >/dev/null
echo "system calls of the thread that calls setup, while it does:"
awk '$2 ~ /^getppid/ { ++mark; thread = $1; next }
  mark == 1 && $1 == thread { sub(/\(.*/, "", $2); if ($2 != "<...") ++count[$2] }
  END { for (call in count) print count[call], call }' "$work/trace" | sort -rn | sed 's/^/  /'
