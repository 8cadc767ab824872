// check.hpp - the argument check of a Fortran form, as a visitor of its description: the number of the
// first bad argument in the description's order, which is the reference's.
//
// It also notes the list of pivots, which has 64 bits inside.
#pragma once

#include "lapack/extremes.hpp"
#include "serv/base.hpp"
#include "serv/scalar.hpp"

namespace vox::lapack {

// Options in upper case.
[[gnu::always_inline]] inline char upper_case(char letter) {
    return letter >= 'a' && letter <= 'z' ? char(letter - 'a' + 'A') : letter;
}
[[gnu::always_inline]] inline bool is(char letter, char upper) {
    return upper_case(letter) == upper;
}

// The caller's list of pivots: how many, and where they are read and written.
struct caller_pivots {
    index_t count;
    const vox_int *in;
    vox_int *out;
};

template <class T>
class argument_check {
  public:
    int bad() const { return bad_; }
    // None for a query, which looks at nothing.
    caller_pivots pivots() const { return is_query_ ? caller_pivots{} : pivots_; }

#define VOX_ELEMENT [[gnu::always_inline]] void

    VOX_ELEMENT option(char c, const char *letters) { next(!has(letters, c)); }
    VOX_ELEMENT option(char c, const char *of_real, const char *of_complex) {
        option(c, is_complex<T> ? of_complex : of_real);
    }
    VOX_ELEMENT letter(char) { next(false); }
    VOX_ELEMENT size(index_t n) { next(n < 0); }
    VOX_ELEMENT size_within(index_t n, index_t most) { next(n < 0 || n > most); }
    VOX_ELEMENT size_from(index_t n, index_t least) { next(n < least); }
    VOX_ELEMENT integer_in(index_t) { next(false); }
    template <class S>
    VOX_ELEMENT scalar_in(S) {
        next(false);
    }
    VOX_ELEMENT real_in(real_of<T>) { next(false); }
    VOX_ELEMENT norm_in(real_of<T> x) { next(x < 0); }
    VOX_ELEMENT real_out(const void *) { next(false); }
    VOX_ELEMENT real_inout(const void *) { next(false); }

    VOX_ELEMENT in(const void *, index_t ld, index_t rows, index_t) {
        next(false);
        next(ld < rows || ld < 1);
    }
    VOX_ELEMENT inout(const void *a, index_t ld, index_t rows, index_t cols) {
        in(a, ld, rows, cols);
    }
    VOX_ELEMENT kept(const void *a, index_t ld, index_t rows, index_t cols) {
        in(a, ld, rows, cols);
    }
    VOX_ELEMENT in_triangle(const void *a, index_t ld, char, char, index_t n) { in(a, ld, n, n); }
    VOX_ELEMENT inout_triangle(const void *a, index_t ld, char, char, index_t n) {
        in(a, ld, n, n);
    }
    VOX_ELEMENT in_trapezoid(const void *a, index_t ld, char, char, index_t m, index_t n) {
        in(a, ld, m, n);
    }
    VOX_ELEMENT in_reflectors(const void *v, index_t ld, char, char, index_t rows, index_t cols) {
        in(v, ld, rows, cols);
    }
    template <class... X>
    VOX_ELEMENT vector_in(X...) {
        next(false);
    }
    template <class... X>
    VOX_ELEMENT vector_inout(X...) {
        next(false);
    }
    template <class... X>
    VOX_ELEMENT vector_out(X...) {
        next(false);
    }

    VOX_ELEMENT pivots_in(const vox_int *list, index_t count) {
        next(false);
        pivots_ = {count, list, nullptr};
    }
    VOX_ELEMENT pivots_out(vox_int *list, index_t count) {
        next(false);
        pivots_ = {count, nullptr, list};
    }
    VOX_ELEMENT pivots_inout(vox_int *list, index_t count) {
        next(false);
        pivots_ = {count, list, list};
    }

    VOX_ELEMENT queried(const void *, index_t length, index_t least) {
        next(false);
        is_query_ = length == -1;
        next(length < least && !is_query_);
    }
    VOX_ELEMENT space(const void *, index_t) { next(false); }
    VOX_ELEMENT real_space(const void *, index_t) { next(false); }
    VOX_ELEMENT integer_space(const void *, index_t) { next(false); }
    VOX_ELEMENT space_rows(const void *w, index_t ld, index_t rows, index_t cols) {
        in(w, ld, rows, cols);
    }
    VOX_ELEMENT require(bool condition, int position) { check(!condition, position); }

#undef VOX_ELEMENT

  private:
    [[gnu::always_inline]] static bool has(const char *letters, char c) {
        for (; *letters; ++letters)
            if (is(c, *letters))
                return true;
        return false;
    }
    [[gnu::always_inline]] void check(bool wrong, int position) {
        if (VOX_UNLIKELY(wrong) && bad_ == 0)
            bad_ = position;
    }
    [[gnu::always_inline]] void next(bool wrong) { check(wrong, ++position_); }

    int position_ = 0, bad_ = 0;
    caller_pivots pivots_{};
    bool is_query_ = false;
};

} // namespace vox::lapack
