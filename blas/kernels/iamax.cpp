// iamax.cpp - i?amax and i?amin: where |x_i| (|re| + |im| for complex numbers) is largest or smallest
// for the first time, counted from 1.
//
// A NaN is never better than another element, and nothing is better than a NaN in the first place,
// as in the reference BLAS's loop of comparisons.
//
// Contiguous vectors are taken in chunks: the best value of each is found lane by lane, and only at
// the end is the place of the best looked up, in the first chunk that attains it.
#include "blas/blas.hpp"
#include "blas/kernels/elements.hpp"

namespace {

// Whether a replaces what is kept; where either is NaN, it does not.
struct largest {
    template <class V>
    static VOX_INLINE auto is_better(V a, V kept) {
        return a > kept;
    }
};
struct smallest {
    template <class V>
    static VOX_INLINE auto is_better(V a, V kept) {
        return a < kept;
    }
};
template <class Order, class V>
VOX_INLINE V better(V a, V kept) {
    return Order::is_better(a, kept) ? a : kept;
}

// What is compared, in both lanes of a pair.
template <int Lanes, class V>
VOX_INLINE V key(V v) {
    if constexpr (Lanes == 2)
        return abs(v) + swap_pairs(abs(v));
    else
        return abs(v);
}
template <int Lanes, class R>
VOX_INLINE R key_of_element(const R *x) {
    return Lanes == 2 ? abs(x[0]) + abs(x[1]) : abs(x[0]);
}

template <class Order, class V>
VOX_INLINE auto best_lane(V v) {
    if constexpr (sizeof(V) == 2 * sizeof(v[0]))
        return better<Order>(v[0], v[1]);
    else
        return best_lane<Order>(better<Order>(low_half(v), high_half(v)));
}

// The best key among n lanes and `kept`.
template <class Order, int Lanes, class R>
VOX_INLINE R best_key(index_t n, const R *x, R kept) {
    constexpr int w = lanes<R>, accumulators = 4;
    vec<R> best[accumulators];
    unroll<accumulators>([&](auto i) { best[i] = broadcast(kept); });
    for (; n >= accumulators * w; n -= accumulators * w, x += accumulators * w)
        unroll<accumulators>(
            [&](auto i) { best[i] = better<Order>(key<Lanes>(load(x + i * w)), best[i]); });
    for (; n >= w; n -= w, x += w)
        best[0] = better<Order>(key<Lanes>(load(x)), best[0]);
    if (n > 0)
        best[1] = better<Order>(select_first(n, key<Lanes>(load_partial(x, n)), best[1]), best[1]);
    best[0] = better<Order>(best[0], best[2]);
    best[1] = better<Order>(best[1], best[3]);
    return best_lane<Order>(better<Order>(best[0], best[1]));
}

// The first lane whose key is `wanted`; there is one.
template <int Lanes, class R>
VOX_INLINE index_t find_key(index_t n, const R *x, R wanted) {
    constexpr int w = lanes<R>;
    const vec<R> all = broadcast(wanted);
    index_t i = 0;
    for (; i + w <= n; i += w)
        if (const unsigned found = equal_lanes(key<Lanes>(load(x + i)), all))
            return i + __builtin_ctz(found);
    // Lanes beyond the last are behind the one that is looked for.
    return i + __builtin_ctz(equal_lanes(key<Lanes>(load_partial(x + i, n - i)), all));
}

template <class Order, int Lanes, class R>
VOX_INLINE index_t contiguous(index_t n, const R *x) {
    constexpr index_t chunk = 128 * lanes<R>;
    R best = key_of_element<Lanes>(x);
    if (best != best)
        return 0;
    if (n < lanes<R>) { // all in one vector
        const vec<R> keys = key<Lanes>(load_partial(x, n)), kept = broadcast(best);
        best = best_lane<Order>(better<Order>(select_first(n, keys, kept), kept));
        return __builtin_ctz(equal_lanes(keys, broadcast(best))) / Lanes;
    }
    index_t where = 0;
    for (index_t i = 0; i < n; i += chunk) {
        const R kept = best;
        best = best_key<Order, Lanes>(n - i < chunk ? n - i : chunk, x + i, kept);
        if (best != kept)
            where = i;
    }
    return (where + find_key<Lanes>(n - where, x + where, best)) / Lanes;
}

template <class Order, int Lanes, class R>
__attribute__((noinline)) index_t strided(index_t n, const R *x, index_t inc) {
    R best = key_of_element<Lanes>(x);
    index_t where = 0;
    for (index_t i = 1; i < n; ++i) {
        x += inc;
        const R k = key_of_element<Lanes>(x);
        if (Order::is_better(k, best)) {
            best = k;
            where = i;
        }
    }
    return where;
}

template <class Order, class T>
VOX_INLINE index_t first_best(index_t n, const T *x, index_t incx) {
    if (VOX_LIKELY(incx == 1))
        return 1 + contiguous<Order, parts<T>>(n * parts<T>, flat(x));
    return 1 + strided<Order, parts<T>>(n, flat(x), incx * parts<T>);
}

} // namespace

#define IAMAX(p, P, T)                                                                             \
    extern "C" index_t VOX_KERNEL(blas, i##p##amax) VOX_VECTOR_PARAMETERS(T, index_t) {            \
        return first_best<largest>(*n, x, *incx);                                                  \
    }                                                                                              \
    extern "C" index_t VOX_KERNEL(blas, i##p##amin) VOX_VECTOR_PARAMETERS(T, index_t) {            \
        return first_best<smallest>(*n, x, *incx);                                                 \
    }
VOX_PRECISIONS(IAMAX)
