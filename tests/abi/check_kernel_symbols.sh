#!/bin/sh
# check_kernel_symbols.sh PATH OBJECTS... - a kernel object defines no global symbol, weak or strong, whose
# name lacks the code path: the linker might keep this copy, with instructions that the processor may
# lack, for the whole program.
set -eu
path=$1
shift
leaks=$(nm --defined-only --extern-only "$@" | awk 'NF == 3 { print $2, $3 }' | grep -v "vox_[a-z]*_${path}_" || true)
if [ -n "$leaks" ]; then
    echo "global symbols without the path name $path:"
    echo "$leaks"
    exit 1
fi
nm --defined-only --extern-only "$@" | grep -c "vox_[a-z]*_${path}_"
