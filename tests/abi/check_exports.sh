#!/bin/sh
# check_exports.sh LIBRARY LIST - the library exports exactly the symbols of the list, sorted by name, all of
# version VOX_1.
set -eu
found=$(nm -D --defined-only "$1" | awk '$2 != "A" { print $3 }')
if echo "$found" | grep -v '@@VOX_1$'; then
    echo "exported without the version VOX_1"
    exit 1
fi
actual=$(echo "$found" | sed 's/@@.*//' | LC_ALL=C sort)
if [ "$actual" != "$(cat "$2")" ]; then
    echo "exported symbols differ from $2 (< expected, > found):"
    echo "$actual" | diff "$2" - || true
    exit 1
fi
echo "$(echo "$actual" | wc -l) exported symbols, as listed"
