#!/bin/sh
# check_install.sh CMAKE SOURCE BUILD EXAMPLE - what is installed is complete and may be moved: programs in C (the
# README's example), C++ and Fortran find it through pkg-config and through CMake, link either library, and run.
set -eu
cmake=$1 source=$2 build=$3 example=$4
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
fail() {
    echo "$1"
    exit 1
}

# Staged for a prefix where nothing is, and moved elsewhere.
first=/opt/vox-first-prefix
DESTDIR=$scratch/stage "$cmake" --install "$build" --prefix $first >"$scratch/log"
[ ! -e $first ] || fail "DESTDIR is not honoured"
prefix=$scratch/moved
mv "$scratch/stage$first" "$prefix"
lib=$(dirname "$(find "$prefix" -name libvox.a)")
cd "$scratch"
consumers=$scratch/consumer
cp -r "$source/tests/install/consumer" "$consumers"
cp "$example" "$consumers/consumer.c"

for directory in $first "$source" "$build"; do
    if grep -rIlF "$directory" "$prefix"; then
        fail "the files above name $directory"
    fi
done
for object in "$prefix"/bin/* "$lib"/*.so; do
    paths=$(readelf -d "$object" | sed -n -E 's/.*\((RUNPATH|RPATH)\).*\[(.*)\]/\2/p')
    case $paths in
    '' | '$ORIGIN'*) ;;
    *) fail "$object looks for libraries in $paths" ;;
    esac
done

"$prefix/bin/vox-info" | grep "Version 2018"
"$prefix/bin/vox-run" --info true 2>log
grep -F "library     $lib/libvox.so" log
grep ERROR log && fail "what vox-run preloads cannot be loaded"

# expect PROGRAM shared|static: it runs, and needs the shared library or does not.
expect() {
    [ "$(LD_LIBRARY_PATH=$lib "./$1")" = 32 ] || fail "$1 does not compute 32"
    if readelf -d "$1" | grep -q 'NEEDED.*libvox.so.1'; then linked=shared; else linked=static; fi
    [ $linked = "$2" ] || fail "$1 is linked with the $linked library"
}

export PKG_CONFIG_PATH="$lib/pkgconfig"
[ "$(pkg-config --modversion vox)" = "$(pkg-config --modversion vox-static)" ] || fail "two versions"
for program in "cc consumer.c" "c++ consumer.cpp" "gfortran consumer.f90"; do
    compiler=${program% *} file=${program#* }
    "$compiler" "$consumers/$file" $(pkg-config --cflags --libs vox) -o "$file.shared"
    expect "$file.shared" shared
    "$compiler" "$consumers/$file" $(pkg-config --cflags --libs vox-static) -o "$file.static"
    expect "$file.static" static
    # --static asks for all that a link without shared libraries needs, wherever libvox.a comes from.
    rm -rf archive
    mkdir archive
    ln -s "$lib/libvox.a" archive
    "$compiler" "$consumers/$file" $(pkg-config --cflags vox) -Larchive \
        $(pkg-config --static --libs-only-l --libs-only-other vox) -o "$file.archive"
    expect "$file.archive" static
done

for language in C CXX Fortran; do
    if ! {
        "$cmake" -S "$consumers" -B $language -DLANGUAGE=$language -DCMAKE_PREFIX_PATH="$prefix" &&
            "$cmake" --build $language
    } >log 2>&1; then
        cat log
        fail "a project in $language does not build"
    fi
    grep -i warning log && fail "a project in $language builds with warnings"
    expect $language/with_vox shared
    expect $language/with_vox_static static
done

# Symbols without a version that come first take the place of the library's, and find them.
cc -shared -fPIC -D_GNU_SOURCE "$consumers/wrapper.c" -o wrapper.so
[ "$(LD_LIBRARY_PATH=$lib LD_PRELOAD=./wrapper.so ./consumer.f90.shared)" = 33 ] ||
    fail "a call cannot be intercepted"
