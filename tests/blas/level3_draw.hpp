// level3_draw.hpp - calls of level 3, drawn so that every pair of values meets: forms, letters of both
// cases, padding, alpha and beta.
#pragma once

#include <sstream>

#include "tests/blas/level3_table.hpp"
#include "tests/support/numbers.hpp"

namespace test {

template <class T>
const routine<T> &routine_named(const std::string &name) { // without the letter of the precision
    for (const routine<T> &r : level3_routines<T>())
        if (r.name.substr(1) == name)
            return r;
    std::abort();
}

// Of rank k or 2k; the scalars of Hermitian ones are real, but for the alpha of her2k.
template <class T>
bool is_update(const routine<T> &r) {
    return r.has('K') && !r.has('v');
}
template <class T>
char result_of(const routine<T> &r) {
    return r.has('C') ? 'C' : 'B';
}
template <class T>
T *&matrix_of(arguments<T> &a, char matrix) {
    return matrix == 'A' ? a.a : matrix == 'B' ? a.x : a.y;
}

// Rows and columns of A, B or C as stored.
template <class T>
std::pair<int64_t, int64_t> shape_of(char matrix, const routine<T> &r, const arguments<T> &a) {
    const int64_t m = r.has('m') ? a.m : a.n, n = a.n;
    if (matrix == 'C' || (r.has('e') && matrix == 'B'))
        return {m, n};
    if (r.has('e'))
        return std::toupper(a.side) == 'L' ? std::pair(m, m) : std::pair(n, n);
    const bool second = matrix == 'B' && r.has('v');
    const std::pair<int64_t, int64_t> plain =
        second ? std::pair<int64_t, int64_t>(a.k, n) : std::pair<int64_t, int64_t>(m, a.k);
    return std::toupper(second ? a.transb : a.trans) == 'N' ? plain
                                                            : std::pair(plain.second, plain.first);
}

// The letters that an option may have: complex updates know one transpose only.
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
struct drawn_call {
    const routine<T> &r;
    arguments<T> a;
    const form<T> &call;
};

template <class T>
drawn_call<T> draw(const routine<T> &r, vox_int m, vox_int n, vox_int k, int combination,
                   lottery &lots) {
    arguments<T> a;
    const bool c = lots.number() % 2, lower_case = lots.number() % 2;
    for (char letter : r.letters)
        if (is_option(letter)) {
            const std::string all = choices(r, letter);
            const char chosen = all[size_t(combination) % all.size()];
            a.option(letter) = char(!c && lower_case ? std::tolower(chosen) : chosen);
            combination /= int(all.size());
        }
    if (c && lots.number() % 2)
        a.layout = CblasRowMajor;
    a.m = m;
    a.n = n;
    a.k = k;
    for (auto [matrix, ld] : {std::pair('A', &a.lda), {'B', &a.ldb}, {'C', &a.ldc}}) {
        const auto [rows, columns] = shape_of(matrix, r, a);
        const int64_t least = a.layout == CblasRowMajor ? columns : rows;
        *ld = std::max(1, vox_int(least)) + lots.pick({0, 0, 1, 5});
    }
    const T other = vox::make<T>(vox::real_of<T>(-0.75), vox::real_of<T>(1.3));
    a.alpha = lots.pick({other, other, other, vox::one<T>, vox::one<T>, -vox::one<T>, T{}});
    a.beta = lots.pick({other, T{}, vox::one<T>, -vox::one<T>});
    return {r, a, c ? r.c : r.fortran};
}

template <class T>
std::ostream &operator<<(std::ostream &out, const drawn_call<T> &d) {
    arguments<T> a = d.a;
    out << (&d.call != &d.r.c ? "" : a.layout == CblasRowMajor ? "C by rows: " : "C: ") << d.r.name;
    for (char letter : d.r.letters)
        if (is_option(letter))
            out << ' ' << a.option(letter);
        else if (!is_scalar_or_array(letter))
            out << ' ' << letter << '=' << a.integer(letter);
    return out << " alpha " << vox::real(a.alpha) << ' ' << vox::imag(a.alpha) << " beta "
               << vox::real(a.beta) << ' ' << vox::imag(a.beta);
}

} // namespace test
