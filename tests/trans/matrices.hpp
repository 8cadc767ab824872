// matrices.hpp - stored matrices for tests, and the routines of the family under one name each, in the
// Fortran or the C form.
#pragma once

#include <cctype>
#include <cstring>
#include <ostream>
#include <vector>

#include "serv/scalar.hpp"
#include "tests/support/guarded.hpp"
#include "tests/support/numbers.hpp"
#include "tests/support/thread_counts.hpp"
#include "tests/support/wide.hpp"
#include "vox/vox.h"

namespace test {

using vox::is_complex;
using vox::real_of;

enum class form { fortran, c };
constexpr form forms[] = {form::fortran, form::c};

constexpr bool is_transposed(char trans) {
    return trans == 'T' || trans == 't' || trans == 'C' || trans == 'c';
}
constexpr bool is_conjugated(char trans) {
    return trans == 'R' || trans == 'r' || trans == 'C' || trans == 'c';
}
inline bool is_by_rows(char ordering) { return ordering == 'R' || ordering == 'r'; }

// How a matrix lies in an array.
struct layout {
    bool by_rows;
    int64_t rows, cols, ld, stride = 1;

    int64_t at(int64_t row, int64_t col) const {
        return by_rows ? row * ld + col * stride : col * ld + row * stride;
    }
    int64_t length() const { return rows && cols ? at(rows - 1, cols - 1) + 1 : 0; }
    static int64_t shortest(bool by_rows, int64_t rows, int64_t cols, int64_t stride = 1) {
        return ((by_rows ? cols : rows) - 1) * stride + 1;
    }
};

// Any bits at all, so that most kinds of numbers and NaN occur.
template <class T>
std::vector<T> any_bits(int64_t n, unsigned seed) {
    random_bits bits(seed);
    std::vector<T> v(static_cast<size_t>(n));
    for (T &x : v) {
        const uint64_t some[2] = {bits(), bits()};
        std::memcpy(&x, some, sizeof(T));
    }
    return v;
}

template <class T>
T number(long double re, long double im) {
    return vox::make<T>(real_of<T>(re), real_of<T>(im));
}
template <class T>
std::vector<T> numbers(int64_t n, unsigned seed) {
    using R = real_of<T>;
    const std::vector<R> parts = random_vector<R>(2 * size_t(n), seed);
    std::vector<T> v;
    for (size_t i = 0; i < size_t(n); ++i)
        v.push_back(vox::make<T>(parts[2 * i], parts[2 * i + 1]));
    return v;
}

template <class T>
bool same_bits(const T &a, const T &b) {
    return std::memcmp(&a, &b, sizeof(T)) == 0;
}
template <class T>
bool same_bits(const T *a, const std::vector<T> &b) {
    return b.empty() || std::memcmp(a, b.data(), b.size() * sizeof(T)) == 0;
}

template <class T>
struct copy_call {
    char ordering, trans;
    int64_t rows, cols;
    T alpha;
    int64_t lda, stridea, ldb, strideb;

    layout of_a() const { return {is_by_rows(ordering), rows, cols, lda, stridea}; }
    layout of_b() const {
        return is_transposed(trans) ? layout{is_by_rows(ordering), cols, rows, ldb, strideb}
                                    : layout{is_by_rows(ordering), rows, cols, ldb, strideb};
    }
};
template <class T>
std::ostream &operator<<(std::ostream &to, const copy_call<T> &c) {
    return to << c.ordering << c.trans << ' ' << c.rows << " x " << c.cols << ", alpha "
              << vox::real(c.alpha) << '+' << vox::imag(c.alpha) << "i, ld " << c.lda << ", "
              << c.ldb << ", strides " << c.stridea << ", " << c.strideb;
}

// The routines under one name: omatcopy(form, call, a, b), which is ?omatcopy2 if there are strides.
#define VOX_TEST_OVERLOADS(p, P, T)                                                                \
    inline void omatcopy(form f, const copy_call<T> &c, const T *a, T *b) {                        \
        const vox_int rows = vox_int(c.rows), cols = vox_int(c.cols), lda = vox_int(c.lda),        \
                      ldb = vox_int(c.ldb), stridea = vox_int(c.stridea),                          \
                      strideb = vox_int(c.strideb);                                                \
        if (c.stridea != 1 || c.strideb != 1)                                                      \
            f == form::c ? VOX_##P##omatcopy2(c.ordering, c.trans, c.rows, c.cols, c.alpha, a,     \
                                              c.lda, c.stridea, b, c.ldb, c.strideb)               \
                         : vox_##p##omatcopy2_(&c.ordering, &c.trans, &rows, &cols, &c.alpha, a,   \
                                               &lda, &stridea, b, &ldb, &strideb);                 \
        else                                                                                       \
            f == form::c ? VOX_##P##omatcopy(c.ordering, c.trans, c.rows, c.cols, c.alpha, a,      \
                                             c.lda, b, c.ldb)                                      \
                         : vox_##p##omatcopy(&c.ordering, &c.trans, &rows, &cols, &c.alpha, a,     \
                                             &lda, b, &ldb);                                       \
    }                                                                                              \
    inline void imatcopy(form f, const copy_call<T> &c, T *ab) {                                   \
        const vox_int rows = vox_int(c.rows), cols = vox_int(c.cols), lda = vox_int(c.lda),        \
                      ldb = vox_int(c.ldb);                                                        \
        f == form::c                                                                               \
            ? VOX_##P##imatcopy(c.ordering, c.trans, c.rows, c.cols, c.alpha, ab, c.lda, c.ldb)    \
            : VOX_##P##IMATCOPY(&c.ordering, &c.trans, &rows, &cols, &c.alpha, ab, &lda, &ldb);    \
    }                                                                                              \
    inline void omatadd(form f, char ordering, char transa, char transb, int64_t m, int64_t n,     \
                        T alpha, const T *a, int64_t lda, T beta, const T *b, int64_t ldb, T *c,   \
                        int64_t ldc) {                                                             \
        const vox_int rows = vox_int(m), cols = vox_int(n), la = vox_int(lda), lb = vox_int(ldb),  \
                      lc = vox_int(ldc);                                                           \
        f == form::c ? VOX_##P##omatadd(ordering, transa, transb, m, n, alpha, a, lda, beta, b,    \
                                        ldb, c, ldc)                                               \
                     : vox_##p##omatadd_(&ordering, &transa, &transb, &rows, &cols, &alpha, a,     \
                                         &la, &beta, b, &lb, c, &lc);                              \
    }
VOX_PRECISIONS(VOX_TEST_OVERLOADS)
#undef VOX_TEST_OVERLOADS

// What an element of the result must be: the bits where no rounding takes part, a value and a bound
// otherwise.
template <class T>
bool is_result(const T &got, const T &alpha, const T &x, bool conjugated) {
    using R = real_of<T>;
    if (vox::real(alpha) == 1 && vox::imag(alpha) == 0) {
        T expected; // a compiler may quiet a NaN that it moves as a number
        std::memcpy(&expected, &x, sizeof(T));
        if (is_complex<T> && conjugated)
            reinterpret_cast<unsigned char *>(&expected)[sizeof(T) - 1] ^= 0x80;
        return same_bits(got, expected);
    }
    if constexpr (!is_complex<T>)
        return got == alpha * x;
    const wide<T> factor = widen(alpha), element = conjugated ? conjugate(widen(x)) : widen(x);
    // each part: Higham, section 3.6
    return agrees(got, factor * element, 2 * gamma<R>(2) * size(factor) * size(element));
}

// The first fault of a result, right(row, column, element) or not, given the array before it; everything outside
// must be as it was.
template <class T, class Right>
std::string fault(const layout &in, const std::vector<T> &before, const T *result,
                  const Right &right) {
    std::vector<T> rest(result, result + before.size());
    for (int64_t i = 0; i < in.rows; ++i)
        for (int64_t j = 0; j < in.cols; ++j) {
            const auto at = size_t(in.at(i, j));
            if (!right(i, j, result[at]))
                return "element " + std::to_string(i) + ", " + std::to_string(j);
            rest[at] = before[at];
        }
    return same_bits(rest.data(), before) ? "" : "outside of the matrix";
}
template <class T>
std::string fault(const copy_call<T> &c, const std::vector<T> &a, const std::vector<T> &before,
                  const T *b) {
    const layout of_a = c.of_a();
    return fault(c.of_b(), before, b, [&](int64_t i, int64_t j, const T &got) {
        const int64_t at = is_transposed(c.trans) ? of_a.at(j, i) : of_a.at(i, j);
        return is_result(got, c.alpha, a[size_t(at)], is_conjugated(c.trans));
    });
}

// A call on operands that end or begin at a protected page.
template <class T>
std::string fault(form f, const copy_call<T> &c, edge where, bool bits) {
    const size_t n = size_t(c.of_a().length()), m = size_t(c.of_b().length());
    const std::vector<T> values = bits ? any_bits<T>(int64_t(n), 1) : numbers<T>(int64_t(n), 1);
    const std::vector<T> before = any_bits<T>(int64_t(m), 2);
    guarded<T> a(values, where), b(before, where);
    a.freeze();
    omatcopy(f, c, a.data(), b.data());
    return fault(c, values, before, b.data());
}

template <class T>
std::vector<T> factors() {
    return {T{}, vox::one<T>, number<T>(-1, 0), number<T>(0.3, -0.7)};
}

using element_types = ::testing::Types<float, double, vox_complex_float, vox_complex_double>;

} // namespace test
