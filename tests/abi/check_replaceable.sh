#!/bin/sh
# check_replaceable.sh LIBRARY LIST - only the names of the list are looked up outside the library although it
# defines them: no other copy of a routine in the process, with integers of 64 bits perhaps, is ever called.
set -eu
names=$(mktemp)
trap 'rm -f "$names"' EXIT
nm -D --defined-only "$1" | awk '{ sub(/@.*/, "", $3); print $3 }' >"$names"
found=$(readelf -rW "$1" | awk '/R_X86_64_/ && NF > 4 { sub(/@.*/, "", $5); print $5 }' | sort -u |
    grep -xFf "$names" || true)
extra=$(for name in $found; do grep -q "[ {]$name;" "$2" || echo "$name"; done)
if [ -n "$extra" ]; then
    echo "calls that another definition in the process would receive:"
    echo "$extra"
    exit 1
fi
echo "replaceable:" $found
