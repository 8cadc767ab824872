// lsame.cpp - compares the option letters of BLAS and LAPACK. Only a to z are folded: the answer
// does not depend on the locale.
#include "serv/base.hpp"
#include "vox/service.h"

namespace {

char upper(char c) { return c >= 'a' && c <= 'z' ? char(c - 'a' + 'A') : c; }

} // namespace

extern "C" int vox_serv_lsame(const char *a, const char *b) {
    return a && b && upper(*a) == upper(*b);
}
