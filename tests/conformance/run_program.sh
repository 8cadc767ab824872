#!/bin/sh
# run_program.sh LIBRARY PRELOAD DIRECTORY PROGRAM EXPECTED - runs a public BLAS test program with LIBRARY
# in place of the system's BLAS.
#
# EXPECTED is the number of subprograms that must pass, or the name of the program's input, each of whose
# routines must pass. The program's report decides, not its status alone: it ends with 0 whatever it finds.
set -eu
library=$(readlink -f "$1") preload=$(readlink -f "$2") directory=$3 program=$4 expected=$5
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
mkdir lib
ln -s "$library" lib/libblas.so.3

fail() {
    sed 's/^/  /' report
    echo "$program: $1"
    exit 1
}

# CBLAS programs replace cblas_xerbla by a function with other arguments than the published header's, so
# their error exits are not run; tests of our own cover those.
case $expected in
*[!0-9]*)
    cp "$directory/$expected" input
    case $program in
    x?cblat*) sed -i '/TEST ERROR EXITS/s/^T/F/' input ;;
    esac
    ;;
*) : >input ;;
esac

status=0
LD_LIBRARY_PATH=$scratch/lib LD_PRELOAD=$preload LD_BIND_NOW=1 \
    LD_DEBUG=bindings LD_DEBUG_OUTPUT=bindings \
    "$directory/$program" <input >output 2>errors || status=$?
cat output ./*.out >report 2>/dev/null || true
cat errors >>report
[ $status -eq 0 ] || fail "ended with status $status"
if sed 's/ERROR-EXITS/error exits/' report | grep -E 'FAIL|SUSPECT|FATAL|ILLEGAL|ERROR|\*\*\*'; then
    fail "reports the above"
fi

# What ran is this library: every function that the program expects of a BLAS was bound to it.
nm -D -u "$directory/$program" | awk '$1 == "U" && $2 !~ /@/ { print $2 }' | sort >wanted
cat bindings.* | sed -n "s|.*binding file [^ ]*/$program \[0\] to $scratch/lib/libblas.so.3 \[0\]: normal symbol \`\(.*\)'\$|\1|p" |
    sort -u >bound
[ -s wanted ] || fail "needs no function of a BLAS"
if ! comm -23 wanted bound | awk '{ print "not this library'\''s:", $0; n = 1 } END { exit n }'; then
    fail "did not run this library alone"
fi

# Everything that should have been tested was, and passed.
if [ ! -s input ]; then
    passed=$(awk '/Test of subprogram number/ { open = 1 }
        /----- PASS -----/ { passed += open; open = 0 } END { print passed + 0 }' report)
    [ "$passed" -eq "$expected" ] || fail "$passed of $expected subprograms passed"
    echo "$program: $passed subprograms passed"
    exit 0
fi
grep -q 'END OF TESTS' report || fail "did not reach its end"
case $program in
x?cblat*) runs=2 ;; # column-major and row-major
*) runs=1 ;;
esac
routines=$(awk '$2 == "T" && /PUT F FOR NO TEST/ { print $1 }' input)
[ -n "$routines" ] || fail "has no routine in its input"
for routine in $routines; do
    computed=$(grep -c "^ *$routine *PASSED THE .*COMPUTATIONAL TESTS" report || true)
    [ "$computed" -eq $runs ] || fail "$routine passed $computed of $runs computational tests"
    if grep -q '^T.*TEST ERROR EXITS' input; then
        grep -q "^ *$routine *PASSED THE TESTS OF ERROR-EXITS" report ||
            fail "$routine did not pass the tests of error exits"
    fi
done
echo "$program: $(echo $routines | wc -w) routines passed"
