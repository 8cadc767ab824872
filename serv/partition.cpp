// partition.cpp - how the threads of a region divide 0 .. n-1 among themselves.
//
// Products of positions and thread counts stay below n, so no n of 63 bits overflows.
#include <math.h>

#include "serv/base.hpp"
#include "vox/service.h"

namespace {

using vox::index_t;

struct part {
    index_t start, length;
};

constexpr part nothing = {0, 0};

part divide(index_t t, index_t threads, index_t n) {
    if (n <= 0 || t < 0 || t >= (threads < 2 ? 1 : threads))
        return nothing;
    if (threads < 2)
        return {0, n};
    const index_t q = n / threads, r = n % threads;
    return {q * t + (t < r ? t : r), t < r ? q + 1 : q};
}

part divide_in_blocks(index_t t, index_t threads, index_t n, index_t nb) {
    if (threads < 2 || nb < 2 || t < 0 || t >= threads || n <= 0)
        return divide(t, threads, n);
    const part blocks = divide(t, threads, n / nb);
    const index_t start = blocks.start * nb;
    return {start, t == threads - 1 ? n - start : blocks.length * nb};
}

// The row of a lower triangle of order n above which lies the fraction t / threads of its area: the
// root of k (k + 1) = (t / threads) n (n + 1), to the nearest row. Monotone in t, since each
// operation is.
index_t row_at(index_t t, index_t threads, index_t n) {
    if (t >= threads)
        return n;
    const long double rows = (long double)n;
    const long double area = rows * (rows + 1) * (long double)t / (long double)threads;
    const index_t k = index_t((sqrtl(1 + 4 * area) - 1) / 2 + 0.5L);
    return k < n ? k : n;
}

// Row i of a lower triangle has i + 1 elements, of an upper one n - i: the same turned around.
part divide_triangle(index_t t, index_t threads, index_t n, bool upper) {
    if (threads < 2 || n <= 0 || t < 0 || t >= threads)
        return divide(t, threads, n);
    const index_t from = row_at(upper ? threads - 1 - t : t, threads, n);
    const index_t to = row_at(upper ? threads - t : t + 1, threads, n);
    return {upper ? n - to : from, to - from};
}

} // namespace

extern "C" int64_t vox_serv_divbythreads(const int64_t *t, const int64_t *threads, const int64_t *n,
                                         int64_t *length) {
    const part p = divide(*t, *threads, *n);
    *length = p.length;
    return p.start;
}

extern "C" int64_t vox_serv_divbythreadsnb(const int64_t *t, const int64_t *threads,
                                           const int64_t *n, const int64_t *nb, int64_t *length) {
    const part p = divide_in_blocks(*t, *threads, *n, *nb);
    *length = p.length;
    return p.start;
}

extern "C" int64_t vox_serv_divbythreadstr(const int64_t *t, const int64_t *threads,
                                           const int64_t *n, const char *uplo, int64_t *length) {
    const part p = divide_triangle(*t, *threads, *n, *uplo == 'U' || *uplo == 'u');
    *length = p.length;
    return p.start;
}
