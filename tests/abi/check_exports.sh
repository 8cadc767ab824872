#!/bin/sh
# check_exports.sh LIBRARY LIST - the library exports exactly the symbols of the list, sorted by name.
set -eu
actual=$(nm -D --defined-only "$1" | awk '{ print $3 }' | LC_ALL=C sort)
if [ "$actual" != "$(cat "$2")" ]; then
    echo "exported symbols differ from $2 (< expected, > found):"
    echo "$actual" | diff "$2" - || true
    exit 1
fi
echo "$(echo "$actual" | wc -l) exported symbols, as listed"
