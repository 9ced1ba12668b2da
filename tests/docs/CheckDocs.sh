#!/usr/bin/env bash
# Holds the pages and the public headers to what they say: every C++ and C sample compiles, every link leads somewhere, every test named exists.
# usage: CheckDocs.sh SOURCE_FOLDER WORK_FOLDER CXX
#
# A sample that includes nothing is a piece of an application that has included the SDK. One that includes the platform's
# interfaces, by the name they are installed under or as a part of this repository, is C++23, every other one C++20, as
# in an application.
set -euo pipefail
here=$(dirname "$(readlink -f "$0")")
source=$1 work=$2 cxx=$3
cd "$source"
rm -rf "$work"
mkdir -p "$work/include/quillon"
ln -s "$PWD/platform" "$work/include/quillon/platform"
pages=(README.md CONTRIBUTING.md docs/*.md examples/*/README.md)
failures=0 samples=0 links=0

fail() {
  echo "FAILED $1"
  failures=$((failures + 1))
}

# What most examples include is read once for all.
printf '#include "quillon/%s.h"\n' ConsentSDK LinuxPlatform Testing >"$work/common.h"
"$cxx" -std=c++20 -Iinclude -x c++-header "$work/common.h" -o "$work/common.h.gch"

# Compiled with its surroundings, an example of a header uses no variable but to show it.
compile() {
  local sample=$1 flags=(-std=c++20 -Iinclude -Wall -Wextra -Werror -fsyntax-only)
  case $sample in
    *.c) gcc -std=c11 -Iinclude -I. -Wall -Wextra -Werror -fsyntax-only "$sample" && return || return 1 ;;
    */include-*) flags+=(-I. -Wno-unused -Wno-unused-result -Wno-unused-parameter) ;;
  esac
  if [[ $sample == */include-quillon-Qt* ]] || grep -q '#include <Q' "$sample"; then
    # shellcheck disable=SC2207
    flags+=(-fPIC $(pkg-config --cflags Qt6Quick | sed 's/-I/-isystem /g'))
  elif [[ $sample == */include-* ]]; then
    flags+=(-include "$work/common.h")
  fi
  grep -q '#include' "$sample" || flags+=(-include quillon/ConsentSDK.h -include quillon/LinuxPlatform.h)
  if grep -qE '#include "(quillon/)?platform/' "$sample"; then flags+=(-std=c++23 -I. -I"$work/include"); fi
  "$cxx" "${flags[@]}" "$sample"
}

# Links to files of ours; what is inside code or leads to the web is left alone.
for page in "${pages[@]}"; do
  while read -r target; do
    links=$((links + 1))
    path=${target%%#*}
    [ -z "$path" ] || [ -e "$(dirname "$page")/$path" ] || fail "$page: nothing is at $target"
  done < <(sed -e '/^```/,/^```/d' -e 's/`[^`]*`//g' "$page" |
    grep -oP '(?<=\]\()[^)\s]+(?=\))|(?<=src=")[^"]+' | grep -vE '^[a-z]+:' || true)
done

python3 "$here/interfaces.py" "$source" || fail "the table of operations"

"$here/ExtractSamples.sh" "$source" "$work/samples"
# The linter of the package reads the pages in QML.
for sample in "$work"/samples/*.c*; do
  samples=$((samples + 1))
  compile "$sample" || fail "$(basename "$sample")"
done

# The threat model names the tests that show what it says.
claims=0
while read -r suite test; do
  claims=$((claims + 1))
  grep -rqE "TEST(_[FP])?\($suite,\s*$test\)" tests || fail "docs/security.md: there is no test $suite.$test"
done < <(grep -oP '`\K[A-Z]\w+\.[A-Z]\w+(?=`)' docs/security.md | tr . ' ')
while read -r row; do
  claims=$((claims + 1))
  grep -rq "\"$row\"" tests/faults || fail "docs/security.md: there is no row $row"
done < <(grep -oP '`faults \K[a-z-]+(?=`)' docs/security.md)

echo "$samples samples, $links links, $claims tests named, $failures failures"
[ $samples -gt 0 ] && [ $links -gt 0 ] && [ $claims -gt 0 ] && [ $failures = 0 ]
