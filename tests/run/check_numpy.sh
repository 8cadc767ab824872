#!/bin/sh
# check_numpy.sh VOX-RUN PYTHON PROGRAM PATH=SETTING... - NumPy on each BLAS that it may find gives the same answers
# with this library in front, on each code path, and the calls are seen to reach the library.
set -eu
run=$1 python=$2 program=$3
shift 3
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
system=/usr/lib/x86_64-linux-gnu
for directories in $system/blas:$system/lapack $system/openblas-pthread; do
    export LD_LIBRARY_PATH=$directories
    for directory in $(echo $directories | tr : ' '); do
        ls "$directory"/lib*.so.3 >/dev/null
    done
    rm -f answers.npz
    "$python" "$program" answers.npz
    for path; do
        name=${path%=*} type=${path#*=}
        case $name in
        cnr_def) name=cnr type=0 ;;
        esac
        "$run" --path $name --threads 2 "$python" "$program" answers.npz $type
    done
done
VOX_VERBOSE_OUTPUT_FILE=log "$run" --verbose "$python" "$program" answers.npz any
for routine in SGEMM DGEMM CGEMM ZGEMM SSYRK ZGEMV DGESV ZGESV DGETRF ZGETRF DPOTRF ZPOTRF DGEQRF ZGEQRF; do
    grep -q "^VOX_VERBOSE $routine(" log || {
        echo "$routine does not reach the library"
        exit 1
    }
done
