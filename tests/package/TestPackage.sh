#!/usr/bin/env bash
# Installs the build into an empty prefix and lives from there alone: every example is built as an application of its own
# and run against the installed development server.
# usage: TestPackage.sh SOURCE_FOLDER BUILD_FOLDER WORK_FOLDER CXX shared|static
set -euo pipefail
source=$1 build=$2 work=$3 cxx=$4 flavour=$5
rm -rf "$work"
mkdir -p "$work"
prefix=$work/prefix

fail() {
  echo "FAILED: $*" >&2
  exit 1
}

quietly() {
  local begin=$SECONDS
  "$@" >"$work/log" 2>&1 || { cat "$work/log"; fail "$*"; }
  echo "$((SECONDS - begin)) s: ${*:1:6}"
}

quietly cmake --install "$build" --prefix "$prefix"
lib=$(dirname "$(find "$prefix" -name 'libquillon-core.*' -print -quit)")
screens=no
[ ! -e "$lib/cmake/QuillonConsent/QuillonConsent-qtquick.cmake" ] || screens=yes

# What the shared libraries show is what the list says, and they need nothing that their component does not stand for.
exports() {
  local library
  for library in "$lib"/libquillon-*.so; do
    nm -DC --defined-only "$library" |
      sed -E "/_PRIVATE$| A | std::_Sp_make_shared_tag/d; s|^[0-9a-f]+ . ||; s|@@QUILLON_[0-9.]+$||; s|^|$(basename "$library" .so): |"
  done | LC_ALL=C sort -u
}
if [ "$flavour" = shared ]; then
  exports >"$work/exports.txt"
  [ "$screens" = yes ] && cp "$source/tests/package/exports.txt" "$work/expected.txt" ||
    grep -v '^libquillon-qt' "$source/tests/package/exports.txt" >"$work/expected.txt"
  diff -u "$work/expected.txt" "$work/exports.txt" ||
    fail "the exported functions changed: if that is meant, change tests/package/exports.txt in the same way"
  # docs/integration.md has the rule of versions.
  "$source/tests/package/CompareAbi.py" "$source/tests/package/released/consent.h" "$prefix/include/quillon/consent.h" \
    "$work/abi" || fail "the C interface changed: if that is meant, copy it to tests/package/released/"
  # Where the sources of Boost.URL are installed they are compiled in, elsewhere the library is needed.
  boost_url=${flavour}_without
  grep -q Boost/Url.cpp "$build/compile_commands.json" || boost_url=libboost_url
  for library in core linux consent-c testing; do
    ! readelf -d "$lib/libquillon-$library.so" | grep NEEDED | grep -v "$boost_url" | grep -iE 'boost|qt|gumbo|re2|idn2' ||
      fail "libquillon-$library needs what it has no use for"
  done
  ! readelf -d "$lib/libquillon-core.so" | grep NEEDED | grep -v "$boost_url" | grep -vE 'libstdc|libgcc|libc\.|libm\.|libz\.|libnettle\.|ld-linux|sanit|san\.' ||
    fail "libquillon-core needs more than the standard library, zlib and Nettle"
  size=0
  for library in core linux; do
    strip --strip-unneeded -o "$work/stripped" "$lib/libquillon-$library.so"
    size=$((size + $(stat -c %s "$work/stripped")))
  done
  echo "core and Linux services: $size bytes stripped, Boost included"
  most=1340000
  [ "$boost_url" != libboost_url ] || most=1415000  # what a newer compiler makes of it
  [ "$size" -le "$most" ] || fail "the SDK grew: docs/performance.md says what is in it"
  "$source/tests/package/CheckBinaries.py" "$prefix" "$prefix/share/quillon-consent/quillon-consent.spdx.json" \
    "$source/" "$build/" || fail "the binaries are not built as they are meant to be"
fi

[ "$("$prefix/bin/quillon-consent" --version)" = "$(sed -n 's/#define QUILLON_VERSION "\(.*\)"/\1/p' "$prefix/include/quillon/version.h")" ] ||
  fail "the tool has another version than the headers"

# What is installed beside it knows every command.
commands=$("$prefix/bin/quillon-consent" --help | sed -n '/^Subcommands:/,$s/^  \([a-z][a-z-]*\).*/\1/p')
manual=$(zcat "$prefix/share/man/man1/quillon-consent.1.gz")
for command in $commands; do
  grep -qx "\.B $command" <<<"$manual" || fail "the manual lacks $command"
done
completed=$(PATH=$prefix/bin:$PATH bash -c '. "$0"; COMP_WORDS=(quillon-consent va) COMP_CWORD=1; _quillon_consent
  echo "${COMPREPLY[@]}"' "$prefix/share/bash-completion/completions/quillon-consent")
[ "$completed" = validate ] || fail "bash completes va to $completed"
[ -f "$prefix/share/quillon-consent/examples/configuration/consent/mobile_banner/demo-tenant/news-reader/live/config.json" ] ||
  fail "the sample configuration is not installed"

# The QML module, as an editor sees it: pages of an application and the samples of the documentation without a warning.
if [ "$flavour" = shared ] && [ "$screens" = yes ]; then
  "$source/tests/docs/ExtractSamples.sh" "$source" "$work/samples"
  mapfile -t pages < <(find "$source/examples" "$work/samples" -name '*.qml')
  quietly /usr/lib/qt6/bin/qmllint -I "$(dirname "$(dirname "$(find "$prefix" -path '*Quillon/Consent' -print -quit)")")" "${pages[@]}"
  ! grep -i warning "$work/log" || { cat "$work/log"; fail "the linter warns of ${pages[*]}"; }
fi

# What does not depend on the flavour is asked once.
if [ "$flavour" = shared ]; then
  # The interfaces of the platform find one another where they are installed.
  for interface in "$source"/platform/*.h; do
    echo "#include \"quillon/platform/$(basename "$interface")\""
  done >"$work/interfaces.cpp"
  quietly "$cxx" -std=c++23 -Wall -Wextra -Werror -fsyntax-only -I"$prefix/include" "$work/interfaces.cpp"

  # Who misspells a component is told the names that there are.
  printf '%s\n' 'cmake_minimum_required(VERSION 3.25)' 'find_package(QuillonConsent REQUIRED COMPONENTS QtQiuck)' \
    >"$work/misspelt.cmake"
  said=$(cmake -DCMAKE_PREFIX_PATH="$prefix" -P "$work/misspelt.cmake" 2>&1 | tr -s '\n ' ' ') || true
  [[ $said == *"no component QtQiuck; it has Core;Linux;"* ]] || fail "a misspelt component is not named: $said"
fi

# The examples away from their repository, as somebody's own project. First without anything of Qt, with both compilers.
cp -r "$source/examples" "$work/examples"
build_examples() {
  local compiler=$1 folder=$2 for_c=gcc
  [[ $compiler != *clang++* ]] || for_c=${compiler/clang++/clang}
  shift 2
  quietly cmake -G Ninja -S "$work/examples" -B "$folder" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_C_COMPILER="$for_c" \
    -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_BUILD_TYPE=Debug "$@"
  quietly cmake --build "$folder"
}
build_examples "$cxx" "$work/plain" -DCMAKE_DISABLE_FIND_PACKAGE_Qt6=ON -DQUILLON_EXAMPLES=headless
if [ "$flavour" = shared ]; then
  build_examples clang++-19 "$work/clang" -DQUILLON_EXAMPLES=headless
  [ "$screens" = no ] || build_examples "$cxx" "$work/screens"
  export PKG_CONFIG_PATH=$lib/pkgconfig LD_LIBRARY_PATH=$lib
  # shellcheck disable=SC2046
  quietly "$cxx" -std=c++20 "$source/examples/analytics/main.cpp" -o "$work/by-pkg-config" \
    $(pkg-config --cflags --libs quillon-consent)
  for package in "$lib"/pkgconfig/*.pc; do
    echo 'int main() {}' | "$cxx" -x c++ - -o "$work/nothing" $(pkg-config --cflags --libs "$(basename "$package" .pc)") ||
      fail "$package leads nowhere"
  done
  # shellcheck disable=SC2046
  quietly gcc -std=c11 "$source/examples/c/main.c" -o "$work/by-pkg-config-c" $(pkg-config --cflags --libs quillon-consent-c)
fi

# They run, each with a folder of its own.
exec {log}< <(exec "$prefix/bin/quillon-consent" serve "$source/examples/configuration" --port 0 --db "$work/uploads.db")
server=$!
trap 'kill "$server" 2>/dev/null || true' EXIT
read -r -t 20 -u "$log" line || fail "the development server did not start"
url=${line#listening on }
cat <&"$log" >"$work/requests" &
run() { quietly timeout 180 "$@"; }
[ "$flavour" != shared ] || run "$work/plain/quillon-host-test"
for folder in plain clang; do
  [ -d "$work/$folder" ] || continue
  run "$work/$folder/quillon-analytics-example" "$url" "$work/data-$folder-analytics"
  run "$work/$folder/quillon-c-example" "$url" "$work/data-$folder-c"
  run "$work/$folder/quillon-plain-host" --app-url "$url" --cdn-url "$url" --vendor-url "$url" --language de \
    --data-dir "$work/data-$folder"
done
if [ "$flavour" = shared ]; then
  run "$work/by-pkg-config" "$url" "$work/data-pkg-config"
  run "$work/by-pkg-config-c" "$url" "$work/data-pkg-config-c"
  unset LD_LIBRARY_PATH
  run python3 "$source/examples/python/consent.py" "$lib/libquillon-consent-c.so" "$url" "$work/data-python"
fi
if [ -d "$work/screens" ]; then
  mkdir -m 700 "$work/runtime"
  mkdir "$work/pictures"
  export QT_QPA_PLATFORM=offscreen QT_QUICK_BACKEND=software XDG_RUNTIME_DIR=$work/runtime
  run "$work/screens/quillon-widgets-example" "$url" "$work/data-widgets" --check
  # The browser's sandbox does not work for the super-user; the tour opens nothing but a page of our own.
  [ "$(id -u)" != 0 ] || export QTWEBENGINE_CHROMIUM_FLAGS="--no-sandbox --disable-gpu"
  run "$work/screens/quillon-newsreader" --server "$url" --data "$work/data-newsreader" --language en --tour "$work/pictures"
fi
kill "$server"

# An application builds the SDK along: it sees include/ and nothing else, and its compiler's warnings stop nothing.
if [ "$flavour" = shared ]; then
  quietly cmake -G Ninja -S "$source/tests/package/embedding" -B "$work/embedding" -DQUILLON_SOURCE="$source" \
    -DQUILLON_QTQUICK=OFF -DCMAKE_CXX_COMPILER="$cxx"
  quietly cmake --build "$work/embedding" --target CMakeFiles/{application.dir/application,service.dir/service}.cpp.o
  ! grep -q -e -Werror "$work/embedding/compile_commands.json" || fail "warnings are errors for those who build the SDK along"
  ! ninja -C "$work/embedding" -t targets all | grep -qE 'quillon-consent:|_tests' ||
    fail "those who build the SDK along build its tools and tests"
fi

if [ "$flavour" = shared ] && [ "$screens" = yes ]; then
  # Nobody keeps these packages, so they are not compressed.
  (cd "$work" && quietly cpack --config "$build/CPackConfig.cmake" -D CPACK_DEBIAN_COMPRESSION_TYPE=none -B "$work/packages")
  for package in "$work"/packages/*.deb; do
    echo "$(basename "$package") needs: $(dpkg-deb -f "$package" Depends)"
  done
  runtime=$(dpkg-deb -f "$work"/packages/libquillon-consent0*.deb Depends)
  [[ $runtime == *libcurl* && $runtime != *qt6* && ($boost_url == libboost_url || $runtime != *boost*) ]] || fail "dependencies of the runtime package"
  if [ -e "$prefix/bin/quillon-receiver" ]; then
    receiver=$(dpkg-deb -f "$work"/packages/quillon-receiver*.deb Depends)
    [[ $receiver == *libpq5* && $receiver != *quillon* && $receiver != *qt6* ]] || fail "dependencies of the receiver"
    for file in bin/quillon-receiver lib/systemd/system/quillon-receiver@.service examples/nginx.conf servers.openapi.json; do
      dpkg-deb -c "$work"/packages/quillon-receiver*.deb | grep -F "$file" >/dev/null || fail "$file is not packaged"
    done
  fi
  for file in libquillon-consent0*:libquillon-linux.so libquillon-consent-dev*:include/quillon/consent.h \
    qml6-module-quillon-consent_*:libquillon-qtquick.so quillon-consent-tools*:bin/quillon-consent; do
    # shellcheck disable=SC2086
    dpkg-deb -c "$work"/packages/${file%%:*}.deb >"$work/content" && grep -qF "${file#*:}" "$work/content" || fail "$file is not packaged"
  done
  for package in "$work"/packages/*.deb; do
    name=$(dpkg-deb -f "$package" Package)
    dpkg-deb -c "$package" >"$work/content"
    for file in copyright changelog.gz; do
      grep -q "/usr/share/doc/$name/$file$" "$work/content" || fail "$name lacks $file"
    done
    # Who links our libraries gets the package as a dependency, and the loader learns of them.
    ! grep -q '/lib[^/]*\.so\.[0-9.]*$' "$work/content" || [[ $(dpkg-deb -I "$package") == *shlibs*triggers* ]] ||
      fail "$name does not tell what libraries it has"
  done
fi
echo "the package works"
