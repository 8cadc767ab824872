#!/bin/sh
# check_baseline.sh OBJECTS... - code outside the kernels uses no register or instruction beyond SSE2.
set -eu
wide=$(objdump -d --no-show-raw-insn "$@" |
    awk '/^[^ ].*file format/ { file = $1 } /%[yz]mm|\tv[a-z0-9]+ .*%xmm|\t(pshufb|ptest|popcnt|lzcnt|tzcnt|andn|mulx|roundsd) / { print file, $0 }')
if [ -n "$wide" ]; then
    echo "instructions beyond the baseline:"
    echo "$wide" | head -20
    exit 1
fi
