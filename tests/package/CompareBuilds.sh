#!/usr/bin/env bash
# Builds the release twice, in folders, at times, by users, and with masks, languages and time zones that differ, and
# compares what is installed and the Debian packages byte for byte.
# usage: CompareBuilds.sh SOURCE_FOLDER WORK_FOLDER [CMAKE_OPTION...]
set -euo pipefail
source=$1 work=$2
shift 2
rm -rf "$work"
mkdir -p "$work"
chmod 755 "$work"
export SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:?the time that both builds shall state}
export CCACHE_DISABLE=1

# Both build the same, whatever is edited meanwhile.
mkdir "$work/source"
(cd "$source" && git ls-files -z | xargs -0 cp -d --parents -t "$work/source")

build() {
  local folder=$1 begin=$SECONDS
  shift
  mkdir -p "$folder/home"
  cp -dR "$work/source/." "$folder"
  [ "$(id -u)" != 0 ] || chown -R "${OWNER:-root}" "$folder"
  "${AS[@]}" env -C "$folder" HOME="$folder/home" "$@" bash -euc '
    umask "$MASK"
    cmake --preset release '"${options[*]@Q}"'
    cmake --build --preset release -j "$(nproc)"
    cmake --install build/release --prefix installed
    umask 022 # of packages, which take it over
    cpack -G DEB --config build/release/CPackConfig.cmake -B packages
    rm -rf packages/_CPack_Packages' >"$folder.log" 2>&1 || { tail -40 "$folder.log"; exit 1; }
  echo "$((SECONDS - begin)) s: $folder"
}

options=("$@") AS=() OWNER=root
build "$work/one" MASK=022 LC_ALL=C TZ=UTC
[ "$(id -u)" != 0 ] || AS=(setpriv --reuid=65534 --regid=65534 --clear-groups) OWNER=65534:65534
build "$work/another/folder-of-a-longer-name" MASK=077 LC_ALL="$(locale -a | grep -m 1 -v '^C\|POSIX' || echo C.UTF-8)" \
  TZ=Asia/Tokyo

compared=0
differing=0
cd "$work/one"
while IFS= read -r -d '' file; do
  compared=$((compared + 1))
  cmp "$file" "$work/another/folder-of-a-longer-name/$file" || differing=$((differing + 1))
done < <(find installed packages -type f -print0 | sort -z)
echo "$compared files compared, $differing differ"
[ "$differing" = 0 ] && [ "$compared" -gt 100 ]
