#!/bin/sh
# check_load.sh LIBRARY - loading costs nothing: no constructor but the compiler's own, few relocations, and
# no library needed beyond libc, libm and the OpenMP runtime.
set -eu
needed=$(readelf -dW "$1" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p')
for library in $needed; do
    case $library in
    libc.so.6 | libm.so.6 | libomp.so.5 | ld-linux-x86-64.so.2) ;;
    *)
        echo "needs $library"
        exit 1
        ;;
    esac
done
constructors=$(readelf -SW "$1" | awk '/\.init_array/ { print $0 }' | sed 's/.*INIT_ARRAY *[0-9a-f]* *[0-9a-f]* *\([0-9a-f]*\).*/\1/')
if [ "$((0x$constructors))" -gt 8 ]; then
    echo ".init_array holds $((0x$constructors / 8)) functions: one (the compiler's) is allowed"
    exit 1
fi
# What the dynamic linker resolves before main; calls of functions are resolved when they are made.
relocations=$(readelf -rW "$1" | grep R_X86_64 | grep -vc JUMP_SLOT || true)
if [ "$relocations" -gt 150 ]; then
    echo "$relocations relocations at load"
    exit 1
fi
echo "needs: $(echo $needed); $relocations relocations"
