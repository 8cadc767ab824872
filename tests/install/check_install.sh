#!/bin/sh
# check_install.sh CMAKE BUILD EXAMPLE OPENMP - what is installed is complete: after a move of the prefix
# the tool runs, and the example of the README compiles and runs against the headers and either library.
set -eu
cmake=$1 build=$2 example=$3 openmp=$4
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
"$cmake" --install "$build" --prefix "$scratch/first" >"$scratch/log"
prefix=$scratch/moved
mv "$scratch/first" "$prefix"
lib=$(dirname "$(find "$prefix" -name libvox.a)")

"$prefix/bin/vox-info" | grep "Version 2018"
cd "$scratch"
cc "$example" -I"$prefix/include" -L"$lib" -lvox -Wl,-rpath,"$lib" -o shared
[ "$(./shared)" = 32 ]
cc "$example" -I"$prefix/include" "$lib/libvox.a" "$openmp" -lm -o static
if readelf -d static | grep libvox; then
    echo "the static program needs the shared library"
    exit 1
fi
[ "$(./static)" = 32 ]
