#!/usr/bin/env bash
# Holds the pages to what they say: every C++ and C sample compiles, every link leads somewhere, every test named exists.
# usage: CheckDocs.sh SOURCE_FOLDER WORK_FOLDER CXX
#
# A sample that includes nothing is a piece of an application that has included the SDK. One that includes the platform's
# interfaces is C++23, every other one C++20, as in an application.
set -euo pipefail
source=$1 work=$2 cxx=$3
cd "$source"
rm -rf "$work"
mkdir -p "$work"
pages=(README.md CONTRIBUTING.md docs/*.md examples/*/README.md)
failures=0 samples=0 links=0

fail() {
  echo "FAILED $1"
  failures=$((failures + 1))
}

compile() {
  local sample=$1 flags=(-std=c++20 -Iinclude -Wall -Wextra -Werror -fsyntax-only)
  case $sample in
    *.c) gcc -std=c11 -Iinclude -Wall -Wextra -Werror -fsyntax-only "$sample" && return || return 1 ;;
  esac
  grep -q '#include' "$sample" || flags+=(-include quillon/ConsentSDK.h -include quillon/LinuxPlatform.h)
  if grep -q '#include "platform/' "$sample"; then flags+=(-std=c++23 -I.); fi
  "$cxx" "${flags[@]}" "$sample"
}

for page in "${pages[@]}"; do
  [ -f "$page" ] || continue
  # Each sample becomes PAGE-LINE.cpp or .c; the line directive lets the compiler name the page.
  awk -v page="$page" -v stem="$work/$(tr / - <<<"${page%.md}")" '
    /^```(cpp|c)$/ { file = stem "-" NR "." substr($0, 4); printf "#line %d \"%s\"\n", NR + 1, page > file; next }
    /^```/ { if (file) close(file); file = ""; next }
    file { print > file }' "$page"
  # Links to files of ours; what is inside code or leads to the web is left alone.
  while read -r target; do
    links=$((links + 1))
    path=${target%%#*}
    [ -z "$path" ] || [ -e "$(dirname "$page")/$path" ] || fail "$page: nothing is at $target"
  done < <(sed -e '/^```/,/^```/d' -e 's/`[^`]*`//g' "$page" |
    grep -oP '(?<=\]\()[^)\s]+(?=\))|(?<=src=")[^"]+' | grep -vE '^[a-z]+:' || true)
done

for sample in "$work"/*; do
  [ -f "$sample" ] || continue
  samples=$((samples + 1))
  compile "$sample" || fail "$(head -1 "$sample")"
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
