#!/bin/sh
# check_programs.sh VOX-RUN SOURCES - programs that use the system's BLAS and LAPACK are served, and those that
# cannot be are told so, in one line, and run.
set -u
run=$1 sources=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch" || exit 1
wrong=0
fail() {
    echo "$1"
    wrong=1
}

# A solver in Fortran, parallel by GNU's OpenMP runtime. dsyev is not this library's.
gfortran -O1 -fopenmp "$sources/solver.f90" -l:liblapack.so.3 -l:libblas.so.3 -o solver || exit 1
./solver >alone || fail "the solver does not run"
VOX_VERBOSE_OUTPUT_FILE=log "$run" --verbose --threads 2 ./solver >served 2>err || fail "the solver fails"
cmp alone served || fail "the solver's answers differ"
[ ! -s err ] || fail "there is an objection to the solver: $(cat err)"
for routine in DGESV DGEMM DSYMV; do
    grep -q "^VOX_VERBOSE $routine(" log || fail "$routine of the solver does not reach the library"
done
"$run" --info ./solver >out 2>err
grep -q 'linked with *libblas.so.3 liblapack.so.3$' err && grep -q 'solver: something was computed' err ||
    fail "--info does not say what the solver uses: $(cat err)"
"$run" --info sh -c 'env --version; ./solver; true' >out 2>err
[ "$(grep 'was computed' err)" = 'vox-run: solver: something was computed by the library' ] ||
    fail "--info does not say what a script's programs use: $(cat err)"

# told PATTERN LOGGED PROGRAM...: a line that matches, the program's output, and whether calls are logged.
told() {
    pattern=$1 logged=$2
    shift 2
    rm -f log
    output=$(VOX_VERBOSE_OUTPUT_FILE=log "$run" --verbose "$@" 2>err)
    [ "$output" = 32 ] || fail "$*: the program's output is \"$output\""
    if [ -n "$pattern" ]; then
        [ "$(wc -l <err)" = 1 ] && grep -q "^vox-run: .*$pattern" err || fail "$*: told \"$(cat err)\""
    else
        [ ! -s err ] || fail "$*: told \"$(cat err)\""
    fi
    if [ -e log ]; then found=logged; else found=silent; fi
    [ $found = "$logged" ] || fail "$*: calls are $found"
}

cc -c "$sources/dot.c" -o dot.o
cc -c "$sources/own_blas.c" -o own_blas.o
cc dot.o -l:libblas.so.3 -o shared
cc dot.o own_blas.o -o own
cc dot.o own_blas.o -rdynamic -o own_exported
cc -shared -fPIC "$sources/own_blas.c" -Wl,-soname,libblas64.so.3 -o libblas64.so.3
cc dot.o -L. -l:libblas64.so.3 -Wl,-rpath,"$scratch" -o wide
cc -shared -fPIC -Dddot_=cblas_ddot64_ -Ddscal_=cblas_dgemm64_ "$sources/own_blas.c" -o package.so
cc -DPACKAGE='"./package.so"' "$sources/dot.c" -o packaged
cc -static dot.o own_blas.o -o static
cc -static-pie -fPIE "$sources/dot.c" "$sources/own_blas.c" -o static_pie
printf '#!/bin/sh\nexec ./shared\n' >script
printf '#!%s/own\n' "$scratch" >script_of_own
printf '#!/usr/bin/env own\n' >script_of_env
chmod +x script script_of_own script_of_env
told '' logged ./shared
told '' logged ./script
told 'own brings its own ddot_ and 1 more: these calls' silent ./own
told 'own brings its own ddot_' silent ./script_of_own
PATH=$scratch:$PATH told 'own brings its own ddot_' silent ./script_of_env
told 'own_exported brings its own ddot_' silent ./own_exported
told 'static is linked statically, with its own ddot_' silent ./static
told 'static_pie is linked statically, with its own ddot_' silent ./static_pie
told 'wide calls libblas64.so.3 with integers of 64 bits' silent ./wide
told 'package.so brings a BLAS under names of its own (cblas_dgemm64_): its calls' silent ./packaged
"$run" --info ./packaged 2>&1 | grep -q 'packaged: nothing was computed' || fail "--info counts the package's calls"

# A program that runs as another user.
cp shared other_user
chmod 755 . other_user
if [ "$(id -u)" = 0 ]; then
    chown 65534 other_user
    chmod u+s other_user
    told 'other_user runs with rights of its own' silent ./other_user
else
    program=$(command -v su)
    "$run" "$program" --version 2>&1 | grep -q "$program runs with rights of its own" || fail "$program: not told"
fi

# For another machine: the system has the last word on it, without the library.
{ head -c 18 shared && printf '\267' && tail -c +20 shared; } >foreign
chmod +x foreign
"$run" ./foreign 2>err
[ $? = 126 ] && grep -q 'foreign is not a program for 64-bit x86' err || fail "foreign: told \"$(cat err)\""
exit $wrong
