#!/bin/sh
# check_options.sh VOX-RUN - what it refuses, in one line, and what it hands on.
set -u
run=$1
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch" || exit 1
wrong=0

# is NAME FOUND WANTED
is() {
    [ "$2" = "$3" ] || {
        echo "$1: \"$2\" instead of \"$3\""
        wrong=1
    }
}

# refused STATUS WORD ARGUMENT...: nothing on standard output, one line on the other, with the word in it.
refused() {
    status=$1 word=$2
    shift 2
    "$run" "$@" >out 2>err
    is "status of: $*" $? "$status"
    is "output of: $*" "$(cat out)" ""
    is "lines of: $*" "$(wc -l <err)" 1
    is "message of: $*" "$(grep -c -e "^vox-run: .*$word" err)" 1
}

echo 'echo a script' >not_executable
echo 'echo a script' >no_first_line
chmod +x no_first_line
printf '#!/nowhere/interpreter\n' >no_interpreter
chmod +x no_interpreter
for number in 0 -1 x '' 2x 1.5 65537 99999999999999999999; do
    refused 2 --threads --threads "$number" true
done
for path in x '' AVX2 'avx2 ' 5; do
    refused 2 --path --path "$path" true
done
# Valgrind's processor has no AVX-512, whatever the machine's has.
valgrind -q "$run" --path avx512 true >out 2>err
is 'status, path that the processor lacks' $? 2
is 'message, path that the processor lacks' "$(cat out err)" \
    'vox-run: --path: this processor cannot run the code path avx512'
refused 2 'no program'
refused 2 'no program' --info
refused 2 'needs a value' --threads
refused 2 'needs a value' --threads 1 --path
refused 2 '--wrong' --wrong true
refused 2 '-x' -x true
refused 127 'nowhere' nowhere
refused 127 './nowhere' ./nowhere
refused 127 '/bin/sh/x' /bin/sh/x
refused 126 './not_executable' ./not_executable
refused 126 'directory' /
refused 127 './no_interpreter' ./no_interpreter

# A library whose name LD_PRELOAD cannot hold.
mkdir 'a b'
cp "$run" 'a b'
cp "$(LD_LIBRARY_PATH=$(dirname "$run")/.. ldd "$run" | awk '$1 == "libvox.so.1" { print $3 }')" 'a b/libvox.so.1'
LD_LIBRARY_PATH='a b' 'a b/vox-run' true 2>err
is 'status, library in "a b"' $? 126
is 'message, library in "a b"' "$(grep -c 'no blank or colon' err)" 1

# The program's own status, arguments and environment.
"$run" sh -c 'exit 7'
is 'status 7' $? 7
is 'arguments' "$("$run" -- printf '%s,' --info '' 'a b')" '--info,,a b,'
is 'script without a first line' "$("$run" ./no_first_line)" 'a script'

# environment WANTED OPTION...: some variables as the program sees them.
environment() {
    wanted=$1
    shift
    is "environment: $*" "$("$run" "$@" sh -c \
        'echo $VOX_CPU_VENDOR,$VOX_NUM_THREADS,$VOX_DEBUG_CPU_TYPE,$VOX_CBWR,$VOX_VERBOSE')" "$wanted"
}
unset VOX_CPU_VENDOR VOX_NUM_THREADS VOX_DEBUG_CPU_TYPE VOX_CBWR VOX_VERBOSE
environment ANY,,,,
environment ANY,3,0,,1 --threads 3 --path def --verbose
environment ANY,,,COMPATIBLE, --path cnr
export VOX_CPU_VENDOR=None VOX_NUM_THREADS=5 VOX_DEBUG_CPU_TYPE=2 VOX_CBWR=AVX VOX_VERBOSE=0
environment None,5,2,AVX,0
environment None,1,0,,1 --threads 1 --path def --verbose
environment None,5,,COMPATIBLE,0 --path cnr
unset VOX_CPU_VENDOR VOX_NUM_THREADS VOX_DEBUG_CPU_TYPE VOX_CBWR VOX_VERBOSE

libm=$(ldd "$run" | awk '$1 == "libm.so.6" { print $3 }')
is 'others preloaded' "$(LD_PRELOAD=$libm "$run" sh -c 'echo $LD_PRELOAD' | sed 's/.*://')" "$libm"

"$run" --info --path cnr --threads 1 sh -c 'echo begun >&2' 2>err
is '--info' "$(sed -n 's/^vox-run: \(code path\|threads\|program\)  *\([^ ,]*\).*/\2/p; t; /^vox/!p' err | xargs)" \
    "cnr_def 1 $(command -v sh) begun"
is '--help' "$("$run" --help | grep -c '^  --')" 4
exit $wrong
