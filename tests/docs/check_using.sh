#!/bin/sh
# check_using.sh CMAKE BUILD DOCUMENT - the commands of the document, in its order, against an installed copy.
set -eu
cmake=$1 build=$2 document=$3
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export PREFIX=$scratch/prefix
"$cmake" --install "$build" --prefix "$PREFIX" >/dev/null
cd "$scratch"
block() { sed -n "/^\`\`\`$1\$/,/^\`\`\`\$/p" "$document" | grep -v '^```'; }
block c >program.c
block fortran >program.f90
block cmake >CMakeLists.txt
block sh >commands.sh
[ "$(grep -c . commands.sh)" -gt 8 ]
sh -eu commands.sh >output 2>log || { cat log; exit 1; }
grep -q "DGESV" output
[ "$(grep -cx ' *0.0909 *0.6364' output)" = 6 ]
"$cmake" -B cmake-build -DCMAKE_PREFIX_PATH="$PREFIX" >/dev/null
"$cmake" --build cmake-build >/dev/null
LD_LIBRARY_PATH=$PREFIX/lib cmake-build/program
