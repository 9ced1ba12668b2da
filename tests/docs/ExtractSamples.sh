#!/usr/bin/env bash
# Writes each C++, C and QML sample of the pages, and each example of the public headers, to a file: PAGE-N.cpp, .c or .qml, the
# slashes of the page's name as dashes. Line directives let the compiler name the page.
# usage: ExtractSamples.sh SOURCE_FOLDER OUT_FOLDER
set -euo pipefail
out=$2
cd "$1"
mkdir -p "$out"

for page in README.md CONTRIBUTING.md docs/*.md examples/*/README.md; do
  awk -v page="$page" -v stem="$out/$(tr / - <<<"${page%.md}")" '
    /^```(cpp|c)$/ { file = stem "-" ++n "." substr($0, 4); printf "#line %d \"%s\"\n", NR + 1, page > file; next }
    /^```qml$/ { file = stem "-" ++n ".qml"; printf "// %s\n", page > file; next }
    /^```/ { if (file) close(file); file = ""; next }
    file { print > file }' "$page"
done

# An example in a header is a piece of a function, of an application that has included that header.
for header in include/quillon/*.h; do
  language=cpp
  ! grep -q '^ \* @code' "$header" || language=c
  awk -v header="$header" -v language="$language" -v stem="$out/$(tr / - <<<"${header%.h}")" '
    /^ *(\/\/\/| \*) @code$/ {
      file = stem "-" ++n "." language
      printf "#include \"%s\"\n#include \"tests/docs/Surroundings.h\"\nvoid sample(SURROUNDINGS) {\n#line %d \"%s\"\n",
        substr(header, 9), NR + 1, header > file
      next
    }
    file && /@endcode$/ { print "}" > file; close(file); file = ""; next }
    file { sub(/^ *(\/\/\/| \*) ?/, ""); print > file }' "$header"
done
