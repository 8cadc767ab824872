#!/bin/sh
# run_program.sh LIBRARY PRELOAD DIRECTORY PROGRAM EXPECTED [EDIT...] - runs a public BLAS or LAPACK test
# program with LIBRARY's symbols in front of all others.
#
# EXPECTED is the number of subprograms that must pass, or the name of the program's input, each of whose
# routines must pass; each EDIT is a file of sed commands that change the input first. The program's
# report decides, not its status alone: it ends with 0 whatever it finds.
set -eu
library=$(readlink -f "$1") preload=$(readlink -f "$2") directory=$3 program=$4 expected=$5
shift 5
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

fail() {
    [ ! -e report ] || sed 's/^/  /' report
    echo "$program: $1"
    exit 1
}

# CBLAS programs replace cblas_xerbla by a function with other arguments than the published header's, so
# their error exits are not run; tests of our own cover those.
case $expected in
*[!0-9]*)
    cp "$directory/$expected" "$scratch/input"
    for edit; do
        sed -i -f "$edit" "$scratch/input"
    done
    case $program in
    x?cblat*) sed -i '/TEST ERROR EXITS/s/^T/F/' "$scratch/input" ;;
    esac
    ;;
*) : >"$scratch/input" ;;
esac
cd "$scratch"

# Behind this library: nothing for the programs of the BLAS; for those of LAPACK the reference, whatever
# the system has set up as its BLAS and LAPACK.
mkdir lib
case $program in
*lintst*)
    ln -s "$directory/liblapack.so.3" "$directory/../blas/libblas.so.3" lib
    [ -e lib/liblapack.so.3 ] && [ -e lib/libblas.so.3 ] || fail "has no reference behind it"
    ;;
*) ln -s "$library" lib/libblas.so.3 ;;
esac

status=0
LD_LIBRARY_PATH=$scratch/lib LD_PRELOAD=$library:$preload LD_BIND_NOW=1 \
    LD_DEBUG=bindings LD_DEBUG_OUTPUT=bindings \
    "$directory/$program" <input >output 2>errors || status=$?
cat output ./*.out >report 2>/dev/null || true
cat errors >>report
[ $status -eq 0 ] || fail "ended with status $status"

# What ran is this library: everything that it exports was bound to it, whoever refers to it, but for what
# the program itself defines.
nm -D --defined-only "$library" | awk '{ sub(/@.*/, ""); print $NF }' >exported
nm -D --defined-only "$directory/$program" | awk '{ sub(/@.*/, ""); print $NF }' >own
cat bindings.* | sed -n "s|.*binding file [^ ]* \[0\] to \([^ ]*\) \[0\]: normal symbol \`\([^']*\)'.*|\2 \1|p" >bindings
awk -v library="$library" '
    FILENAME == "exported" { exported[$1] = 1; next }
    FILENAME == "own" { delete exported[$1]; next }
    !($1 in exported) { next }
    $2 == library { bound = 1; next }
    { print "not this library'\''s:", $1, "of", $2; wrong = 1 }
    END { exit wrong || !bound }' exported own bindings || fail "did not run this library alone"

# Everything that should have been tested was, and passed.
judge_subprograms() {
    passed=$(awk '/Test of subprogram number/ { open = 1 }
        /----- PASS -----/ { passed += open; open = 0 } END { print passed + 0 }' report)
    [ "$passed" -eq "$expected" ] || fail "$passed of $expected subprograms passed"
    echo "$program: $passed subprograms passed"
}

judge_blas() {
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
}

# With the reference alone all tests pass, so none is excused: after its opening the report has nothing
# but lines that say so.
judge_lapack() {
    grep -q '^ End of tests' report || fail "did not reach its end"
    if sed '1,/Relative machine precision/d' report | grep . | grep -v -E \
        '^ (All tests for .* passed the threshold|.* passed the tests of the error exits|End of tests|Total time used)'; then
        fail "reports the above"
    fi
    groups=$(awk '/error exits$/ { open = 1; next } open { print $1 }' input)
    [ -n "$groups" ] || fail "has no group of routines in its input"
    for group in $groups; do
        case $group in
        ?QP) name=$(echo "$group" | tr P 3) ;; # as the program calls it
        *) name=$group ;;
        esac
        grep -q -E "^ All tests for $name (routines|drivers) *passed the threshold" report ||
            fail "$group did not pass the threshold"
    done
    echo "$program: $(echo $groups | wc -w) groups of routines passed"
}

case $program in
*lintst*) judge_lapack ;;
*)
    if sed 's/ERROR-EXITS/error exits/' report | grep -E 'FAIL|SUSPECT|FATAL|ILLEGAL|ERROR|\*\*\*'; then
        fail "reports the above"
    fi
    if [ -s input ]; then judge_blas; else judge_subprograms; fi
    ;;
esac
