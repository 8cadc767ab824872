#!/bin/sh
# check_promises.sh DOCUMENT TESTS CTEST BUILD - every test that the document names exists: `Suite.Test` in the
# file named before it, which a CMakeLists.txt names, and after the word ctest the registered tests.
set -eu
document=$1 tests=$2 registered=$(mktemp)
trap 'rm -f "$registered"' EXIT
"$3" --test-dir "$4" -N | sed -n 's/^ *Test *#[0-9]*: //p' >"$registered"
fail() {
    echo "$1"
    status=1
}
status=0 file= checked=0
for word in $(tr '\n' ' ' <"$document" | grep -o '`[^`]*`\|\bctest\b' | tr -d '`' | grep '^ctest$\|^[A-Za-z0-9_/]*\.[A-Za-z0-9_.]*$'); do
    case $word in
    ctest) file=$registered ;;
    *.cpp)
        file=$tests/$word
        case $word in
        bench/*) [ -f "$tests/../$word" ] || fail "no file $word" ;;
        *) grep -qs "$(basename "$word")" "$(dirname "$file")/CMakeLists.txt" || fail "$word is not built" ;;
        esac
        ;;
    *)
        checked=$((checked + 1))
        if [ "$file" = "$registered" ]; then
            grep -qx "$word" "$file" || fail "no test $word"
        else
            grep -Eq "TEST(_F|_P)?\(${word%.*}, ${word#*.}\)" "$file" || fail "no test $word in $file"
        fi
        ;;
    esac
done
echo "$checked tests"
[ "$checked" -gt 80 ] || fail "the document names hardly any test"
exit $status
