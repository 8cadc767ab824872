// draw.hpp - arguments for a routine of level 2 or 3, drawn so that every pair of values meets: forms, letters
// of both cases, band widths, increments, padding, alpha and beta; and what judging the outcome shares.
#pragma once

#include <cstring>
#include <limits>
#include <sstream>

#include "tests/blas/calls.hpp"
#include "tests/support/numbers.hpp"
#include "tests/support/wide.hpp"

namespace test {

// Of rank k or 2k in level 3, whose complex ones know one transpose only.
template <class T>
bool is_update(const routine<T> &r) {
    return r.has('K') && !r.has('v');
}
// The letters that an option may have.
template <class T>
std::string choices(const routine<T> &r, char option) {
    if (option == 't' && vox::is_complex<T> && is_update(r))
        return r.hermitian() ? "NC" : "NT";
    return option == 'e' ? "LR" : option == 'u' ? "UL" : option == 'd' ? "NU" : "NTC";
}
// All combinations of them are numbers below this.
template <class T>
int combinations(const routine<T> &r) {
    size_t product = 1;
    for (char letter : r.letters)
        product *= is_option(letter) ? choices(r, letter).size() : 1;
    return int(product);
}
template <class T>
void set_options(const routine<T> &r, int combination, arguments<T> &a) {
    for (char letter : r.letters)
        if (is_option(letter)) {
            const std::string all = choices(r, letter);
            a.option(letter) = all[size_t(combination) % all.size()];
            combination /= int(all.size());
        }
}

template <class T>
struct drawn_call {
    const routine<T> &r;
    arguments<T> a;
    const form<T> &call;
};

// A call on an m by n matrix (n by n where the routine has no m), in level 3 with an inner k.
template <class T>
drawn_call<T> draw(const routine<T> &r, vox_int m, vox_int n, vox_int k, int combination,
                   lottery &lots) {
    arguments<T> a;
    set_options(r, combination, a);
    a.m = r.has('m') ? m : n;
    a.n = n;
    a.k = k;
    const vox_int wide = n > 150 ? 40 : n + 2;
    if (r.has('k'))
        a.ku = lots.pick({0, 1, 3, wide});
    if (r.has('l'))
        a.kl = lots.pick({0, 1, 3, wide});
    a.incx = lots.pick({1, 1, 1, -1, 2, -3, 37});
    a.incy = lots.pick({1, 1, 1, -1, 2, -3, 37});
    const T other = vox::make<T>(vox::real_of<T>(-0.75), vox::real_of<T>(1.3));
    a.alpha = lots.pick({other, other, other, vox::one<T>, vox::one<T>, -vox::one<T>, T{}});
    a.beta = lots.pick({other, T{}, vox::one<T>, -vox::one<T>});
    const bool c = r.c && lots.number() % 2;
    if (c && lots.number() % 2)
        a.layout = CblasRowMajor;
    for (char letter : {'L', 'M', 'N'})
        if (r.has(letter))
            a.integer(letter) = r.least_ld(letter, a) + lots.pick({0, 0, 1, 5});
    if (!c && lots.number() % 2)
        for (char *option : {&a.side, &a.uplo, &a.trans, &a.transb, &a.diag})
            *option = char(std::tolower(*option));
    return {r, a, c ? r.c : r.fortran};
}
// The same with any letters.
template <class T>
drawn_call<T> draw(const routine<T> &r, vox_int m, vox_int n, vox_int k, lottery &lots) {
    return draw(r, m, n, k, int(lots.number() % unsigned(combinations(r))), lots);
}

template <class T>
std::ostream &operator<<(std::ostream &out, const drawn_call<T> &d) {
    arguments<T> a = d.a;
    return out << (&d.call != &d.r.c           ? ""
                   : a.layout == CblasRowMajor ? "C by rows: "
                                               : "C: ")
               << call_line(d.r, a) << " alpha " << vox::real(a.alpha) << ' ' << vox::imag(a.alpha)
               << " beta " << vox::real(a.beta) << ' ' << vox::imag(a.beta);
}

// A value put somewhere into an operand.
struct plant {
    char operand; // A, X or Y in level 2, A, B or C in level 3
    double value;
};
template <class T>
constexpr T not_to_be_read() {
    constexpr auto nan = std::numeric_limits<vox::real_of<T>>::quiet_NaN();
    return vox::make<T>(nan, nan);
}
// The bound of the error of a sum of k products with factors before it.
template <class T>
long double roundings(int64_t k) {
    return gamma<vox::real_of<T>>(vox::is_complex<T> ? 2 * k + 4 : k + 2);
}
// What is wrong with an element, and with all others where those that are right are expected.
template <class T>
std::string wrong(int64_t i, int64_t j, T got, wide<T> expected, long double bound) {
    std::ostringstream out;
    out << "element " << i << ' ' << j << " is " << widen(got) << ", not " << expected << " +- "
        << bound;
    return out.str();
}
template <class T>
std::string compare(const std::vector<T> &expected, const T *after) {
    return expected.empty() || std::memcmp(expected.data(), after, expected.size() * sizeof(T)) == 0
               ? ""
               : "something other than the result was written";
}

// What is wrong with a call, as the reference of its level finds, everything else drawn.
template <class T>
class trial;
template <class T>
std::string fault(const routine<T> &r, vox_int m, vox_int n, vox_int k, lottery &lots) {
    const drawn_call<T> d = draw(r, m, n, k, lots);
    const std::string found = trial<T>(r, d.a, lots.number()).fault(d.call);
    return found.empty() ? "" : (std::ostringstream() << d << ": " << found).str();
}

} // namespace test
