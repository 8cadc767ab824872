// calls.hpp - routines of levels 2 and 3 as rows of a table, and how one is called.
//
// A routine's parameters are a string of letters, one each, in the Fortran order:
//
//   e side   u uplo   t v trans of A and B   d diag   m n K sizes   l kl   k ku, or the k of a triangle
//   s alpha   b beta   A B C matrices   L M N their leading dimensions   X Y vectors   i j their increments
//   o layout (C only, always first)
//
// They say how to make a call from an arguments<T>, what the matrix of a level 2 routine is (no L: packed;
// k: band; d: triangular; u: one triangle stored; b: a product; neither b nor d: an update of A), the
// shapes in level 3, and under which number a bad parameter is reported.
#pragma once

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "serv/scalar.hpp"
#include "tests/support/element_types.hpp"
#include "vox/vox.h"

namespace test {

inline bool is_option(char letter) { return std::strchr("eutvd", letter); }
inline bool is_scalar_or_array(char letter) { return std::strchr("sbAXYBC", letter); }

template <class T>
struct arguments {
    CBLAS_LAYOUT layout = CblasColMajor;
    char side = 'L', uplo = 'U', trans = 'N', transb = 'N', diag = 'N';
    vox_int m = 0, n = 0, k = 0, kl = 0, ku = 0;
    vox_int lda = 1, ldb = 1, ldc = 1, incx = 1, incy = 1;
    T alpha = {}, beta = {};
    T *a = nullptr, *x = nullptr, *y = nullptr; // the second and third matrix are x and y, too

    char &option(char letter) {
        char *const all[] = {&side, &uplo, &trans, &transb, &diag};
        return *all[std::string_view("eutvd").find(letter)];
    }
    vox_int &integer(char letter) {
        vox_int *const all[] = {&m, &n, &k, &kl, &ku, &lda, &ldb, &ldc, &incx, &incy};
        return *all[std::string_view("mnKlkLMNij").find(letter)];
    }
    void *address(char letter) {
        void *const all[] = {&alpha, &beta, a, x, y, x, y};
        return all[std::string_view("sbAXYBC").find(letter)];
    }
};

// The C value of an option; what is none stays what it is, and is none in C either.
inline int c_option(char letter) {
    constexpr int values[] = {CblasNoTrans, CblasTrans, CblasConjTrans,
                              CblasUpper,   CblasLower, CblasPacked};
    const size_t at = std::string_view("NTCULP").find(letter);
    return at < std::size(values) ? values[at] : letter;
}

// The argument that a parameter of type P gets.
template <class P, class T>
P argument(char letter, arguments<T> &a) {
    if constexpr (std::is_same_v<P, CBLAS_LAYOUT>)
        return a.layout;
    else if constexpr (std::is_same_v<P, CBLAS_DIAG>)
        return P(a.diag == 'N' ? int(CblasNonUnit) : a.diag == 'U' ? int(CblasUnit) : a.diag);
    else if constexpr (std::is_same_v<P, CBLAS_SIDE>)
        return P(a.side == 'L' ? int(CblasLeft) : a.side == 'R' ? int(CblasRight) : a.side);
    else if constexpr (std::is_enum_v<P>)
        return P(c_option(a.option(letter)));
    else if constexpr (std::is_same_v<P, vox_int>)
        return is_option(letter) ? c_option(a.option(letter)) : a.integer(letter);
    else if constexpr (std::is_same_v<P, const vox_int *>)
        return &a.integer(letter);
    else if constexpr (std::is_same_v<P, const char *>)
        return &a.option(letter);
    else if constexpr (std::is_floating_point_v<P>)
        return vox::real(letter == 's' ? a.alpha : a.beta);
    else
        return static_cast<P>(a.address(letter));
}

template <class T>
using form = std::function<void(arguments<T> &)>;

template <class T, class... P, size_t... I>
form<T> form_of(void (*routine)(P...), const char *letters, std::index_sequence<I...>) {
    return [=](arguments<T> &a) { routine(argument<P>(letters[I], a)...); };
}
template <class T, class... P>
form<T> form_of(void (*routine)(P...), const char *letters) {
    return form_of<T>(routine, letters, std::index_sequence_for<P...>());
}

template <class T>
struct routine {
    std::string name, letters;
    form<T> fortran, c; // no c where only LAPACK has the routine

    bool has(char letter) const { return letters.find(letter) != std::string::npos; }
    bool hermitian() const { return name[1] == 'h'; }
    bool solves() const { return has('d') && name[3] == 's'; }
    bool updates() const { return !has('b') && !has('d'); }
    bool real_alpha() const { return hermitian() && updates() && !has('Y'); }
    // The leading dimension that the arguments need at least; 0 where there is none.
    vox_int least_lda(const arguments<T> &a) const {
        if (!has('L'))
            return 0;
        if (has('k'))
            return vox_int(std::max<int64_t>(1, int64_t(a.kl) + a.ku + 1));
        return std::max(1, has('m') && a.layout == CblasColMajor ? a.m : a.n);
    }
    // Rows and columns of A, B or C in level 3 as stored.
    std::pair<int64_t, int64_t> shape(char matrix, const arguments<T> &a) const {
        const int64_t m = has('m') ? a.m : a.n, n = a.n, k = a.k;
        if (matrix == 'C' || (has('e') && matrix == 'B'))
            return {m, n};
        if (has('e'))
            return std::toupper(a.side) == 'L' ? std::pair(m, m) : std::pair(n, n);
        const bool second = matrix == 'B' && has('v');
        const auto [rows, columns] = second ? std::pair(k, n) : std::pair(m, k);
        return std::toupper(second ? a.transb : a.trans) == 'N' ? std::pair(rows, columns)
                                                                : std::pair(columns, rows);
    }
    // The leading dimension that any matrix needs, L, M or N.
    vox_int least_ld(char letter, const arguments<T> &a) const {
        if (!has('M') && !has('N'))
            return least_lda(a);
        const auto [rows, columns] = shape("ABC"[letter - 'L'], a);
        return std::max(1, vox_int(a.layout == CblasColMajor ? rows : columns));
    }
};

#define FORTRAN_ROUTINE(p, name, letters)                                                          \
    {                                                                                              \
#p #name, letters, form_of < T>(p##name##_, letters), {}                                   \
    }
#define ROUTINE(p, name, letters)                                                                  \
    {                                                                                              \
#p #name, letters, form_of < T>(p##name##_, letters),                                      \
            form_of < T>(cblas_##p##name, "o" letters)                                             \
    }

// A table of the routines for each type: of all of them, and of real or complex ones alone.
#define ROUTINE_TABLE(table, all, real, complex)                                                   \
    template <class T>                                                                             \
    const std::vector<routine<T>> &table() {                                                       \
        static const auto rows = []() -> std::vector<routine<T>> {                                 \
            if constexpr (std::is_same_v<T, float>)                                                \
                return {all(s) real(s)};                                                           \
            else if constexpr (std::is_same_v<T, double>)                                          \
                return {all(d) real(d)};                                                           \
            else if constexpr (std::is_same_v<T, vox_complex_float>)                               \
                return {all(c) complex(c)};                                                        \
            else                                                                                   \
                return {all(z) complex(z)};                                                        \
        }();                                                                                       \
        return rows;                                                                               \
    }

inline std::string upper_case(std::string text) {
    for (char &c : text)
        c = char(std::toupper(c));
    return text;
}

// The call as verbose mode prints it: letters and integers by value, addresses of the rest.
template <class T>
std::string call_line(const routine<T> &r, arguments<T> &a) {
    std::string line = upper_case(r.name);
    for (char letter : r.letters) {
        char text[40];
        if (is_option(letter))
            std::snprintf(text, sizeof text, "%c", a.option(letter));
        else if (is_scalar_or_array(letter))
            std::snprintf(text, sizeof text, "%p", a.address(letter));
        else
            std::snprintf(text, sizeof text, "%d", a.integer(letter));
        line += (letter == r.letters[0] ? "(" : ",") + std::string(text);
    }
    return line + ")";
}

} // namespace test
