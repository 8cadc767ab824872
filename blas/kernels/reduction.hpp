// reduction.hpp - the loop of all sums over one vector or two: dot, asum, nrm2.
//
// Contiguous vectors: independent accumulators, so that as many additions are in flight as the
// units can take, then single vectors, then the rest as a partial vector. Nothing depends on the
// operands' alignment, so neither does the result. Forward error: |error| <= gamma(n) sum |term_i|
// for any order of the sum (Higham, Accuracy and Stability of Numerical Algorithms, section 3.1).
//
// A sum is a template over the type of what it adds, a vector or an element:
//
//   template <class V> struct squares {
//       V v;
//       void add(V x);                  // one operand or two
//       void merge(const squares &);
//       auto total() const;             // of all lanes
//   };
//
// reduce<squares, double, parts<T>>(n, source(x, incx)) converts the operands to double.
#pragma once

#include "blas/kernels/elements.hpp"

namespace {

// An operand in lanes of its real type.
template <class R>
struct source_of {
    using real = R;
    const R *p;
    index_t inc;
};
template <class T>
VOX_INLINE auto source(const T *x, index_t inc) {
    return source_of<real_of<T>>{flat(x), inc * parts<T>};
}

// Whole blocks of so many vectors, each with its accumulator; what is left stays in n and x.
template <template <class> class Sum, class A, int Bytes, int Vectors, class... R>
VOX_INLINE auto sum_of_blocks(index_t &n, const R *&...x) {
    constexpr int w = Bytes / int(sizeof(A));
    Sum<typename vec_of<A, Bytes>::type> sum[Vectors] = {};
    for (; n >= Vectors * w; n -= Vectors * w) {
        unroll<Vectors>([&](auto i) { sum[i].add(load_as<A, Bytes>(x + i * w)...); });
        ((x += Vectors * w), ...);
    }
    unroll<Vectors / 2>([&](auto i) { sum[i].merge(sum[i + Vectors / 2]); });
    unroll<Vectors / 4>([&](auto i) { sum[i].merge(sum[i + Vectors / 4]); });
    if constexpr (Vectors > 4)
        sum[0].merge(sum[1]);
    return sum[0];
}

// What no block took, fewer than four vectors, and a first sum: single vectors as the bits of n tell,
// in two sums, and a part.
template <template <class> class Sum, class A, class... R>
VOX_INLINE auto sum_of_rest(index_t n, Sum<vec<A>> sum, const R *...x) {
    constexpr int w = lanes<A>;
    if (n == 0)
        return sum.total();
    Sum<vec<A>> second{};
    if (n & 2 * w) {
        sum.add(load_as<A>(x)...);
        second.add(load_as<A>(x + w)...);
        ((x += 2 * w), ...);
    }
    if (n & w) {
        sum.add(load_as<A>(x)...);
        ((x += w), ...);
    }
    if (n & (w - 1))
        second.add(load_partial_as<A>(x, n & (w - 1))...);
    sum.merge(second);
    return sum.total();
}

template <template <class> class Sum, class A, class... R>
__attribute__((noinline)) auto sum_of_many(index_t n, const R *...x) {
    if constexpr (vector_bytes == 64)
        if (n * index_t((sizeof(R) + ...)) >= far_bytes) {
            const auto sum = sum_of_blocks<Sum, A, 32, 8>(n, x...).total();
            return sum + sum_of_rest<Sum, A>(n, Sum<vec<A>>{}, x...);
        }
    auto sum = sum_of_blocks<Sum, A, vector_bytes, 8>(n, x...);
    sum.merge(sum_of_blocks<Sum, A, vector_bytes, 4>(n, x...));
    return sum_of_rest<Sum, A>(n, sum, x...);
}

// n is the number of lanes.
template <template <class> class Sum, class A, class... R>
VOX_INLINE auto sum_of_contiguous(index_t n, const R *...x) {
    if (n < lanes<A>) {
        Sum<vec<A>> sum{};
        sum.add(load_partial_as<A>(x, n)...);
        return sum.total();
    }
    if (n < 4 * lanes<A>)
        return sum_of_rest<Sum, A>(n, Sum<vec<A>>{}, x...);
    if (VOX_UNLIKELY(n >= 128 * lanes<A>))
        return sum_of_many<Sum, A>(n, x...);
    const auto sum = sum_of_blocks<Sum, A, vector_bytes, 4>(n, x...);
    return sum_of_rest<Sum, A>(n, sum, x...);
}

// Elements of so many lanes one by one, n >= 1; in four sums, as long as there are four.
template <template <class> class Sum, class A, int Lanes, class... X>
VOX_INLINE auto sum_of_elements(index_t n, X... x) {
    using E = element_of<A, Lanes>;
    Sum<typename E::type> sum[4] = {};
    for (; n >= 4; n -= 4) {
        unroll<4>([&](auto i) { sum[i].add(E::load_from(x.p + i * x.inc)...); });
        ((x.p += 4 * x.inc), ...);
    }
    for (; n > 0; --n) {
        sum[0].add(E::load_from(x.p)...);
        ((x.p += x.inc), ...);
    }
    sum[0].merge(sum[1]);
    sum[2].merge(sum[3]);
    sum[0].merge(sum[2]);
    return sum[0].total();
}

// Any increments; a vector with a negative one is walked from its end.
template <template <class> class Sum, class A, int Lanes, class... X>
__attribute__((noinline)) auto sum_of_strided(index_t n, X... x) {
    ((x.p = first_element(x.p, n, x.inc)), ...);
    return sum_of_elements<Sum, A, Lanes>(n, x...);
}

template <template <class> class Sum, class A, int Lanes, class... X>
VOX_INLINE auto reduce(index_t n, X... x) {
    if (VOX_UNLIKELY(((x.inc != Lanes) || ...)))
        return sum_of_strided<Sum, A, Lanes>(n, x...);
    if (n * Lanes <= 2) { // not worth a vector's reduction
        Sum<element<A, Lanes>> sum{};
        sum.add(element_of<A, Lanes>::load_from(x.p)...);
        if (Lanes == 1 && n == 2)
            sum.add(element_of<A, Lanes>::load_from(x.p + Lanes)...);
        return sum.total();
    }
    return sum_of_contiguous<Sum, A>(n * Lanes, x.p...);
}

// The sum of all lanes; an element of one lane is its own.
template <class V>
VOX_INLINE auto sum_of_lanes(V v) {
    if constexpr (std::is_arithmetic_v<V>)
        return v;
    else
        return reduce_add(v);
}

} // namespace
