// level2_draw.hpp - arguments for a routine of level 2, drawn so that every pair of values meets:
// forms, letters of both cases, band widths, increments, padding, alpha and beta.
#pragma once

#include <sstream>

#include "tests/blas/level2.hpp"
#include "tests/support/numbers.hpp"

namespace test {

// All combinations of the letters that a routine has, as numbers below this.
template <class T>
int combinations(const routine<T> &r) {
    return (r.has('u') ? 2 : 1) * (r.has('d') ? 2 : 1) * (r.has('t') ? 3 : 1);
}

template <class T>
void set_letters(const routine<T> &r, int combination, arguments<T> &a) {
    a.trans = r.has('t') ? "NTC"[combination % 3] : 'N';
    combination /= r.has('t') ? 3 : 1;
    a.uplo = "UL"[combination % 2];
    a.diag = "NU"[combination / 2];
}

template <class T>
struct drawn_call {
    const routine<T> &r;
    arguments<T> a;
    const form<T> &call;
};

// A call on an m by n matrix (n by n where the routine has no m).
template <class T>
drawn_call<T> draw(const routine<T> &r, vox_int m, vox_int n, int combination, lottery &lots) {
    arguments<T> a;
    set_letters(r, combination, a);
    a.m = r.has('m') ? m : n;
    a.n = n;
    const vox_int wide = n > 150 ? 40 : n + 2;
    if (r.has('k'))
        a.ku = lots.pick({0, 1, 3, wide});
    if (r.has('l'))
        a.kl = lots.pick({0, 1, 3, wide});
    a.incx = lots.pick({1, 1, 1, -1, 2, -3, 37});
    a.incy = lots.pick({1, 1, 1, -1, 2, -3, 37});
    const T other = vox::make<T>(vox::real_of<T>(-0.75), vox::real_of<T>(1.3));
    a.alpha = lots.pick({other, other, vox::one<T>, -vox::one<T>, T{}});
    a.beta = lots.pick({other, T{}, vox::one<T>, -vox::one<T>});
    const bool c = r.c && lots.number() % 2;
    if (c && lots.number() % 2)
        a.layout = CblasRowMajor;
    if (!c && lots.number() % 2)
        for (char *letter : {&a.uplo, &a.trans, &a.diag})
            *letter = char(std::tolower(*letter));
    a.lda = r.least_lda(a) + lots.pick({0, 0, 1, 5});
    return {r, a, c ? r.c : r.fortran};
}

template <class T>
std::ostream &operator<<(std::ostream &out, const drawn_call<T> &d) {
    arguments<T> a = d.a;
    return out << (&d.call != &d.r.c           ? ""
                   : a.layout == CblasRowMajor ? "C by rows: "
                                               : "C: ")
               << call_line(d.r, a) << " alpha " << vox::real(a.alpha) << " beta "
               << vox::real(a.beta);
}

} // namespace test
