// dot.cpp - the sum of x_i y_i: ?dot, ?dotu, and with conj(x_i) ?dotc; dsdot in double precision.
#include "blas/blas.hpp"
#include "blas/kernels/reduction.hpp"

namespace {

template <class V>
struct products {
    V v;
    VOX_INLINE void add(V x, V y) { v = fma(x, y, v); }
    VOX_INLINE void merge(const products &other) { v += other.v; }
    VOX_INLINE auto total() const { return sum_of_lanes(v); }
};

// Complex products, their four kinds summed apart: straight has re re and im im in its lanes,
// crossed re im and im re. How they are joined is all that conjugation changes.
template <class V, bool Conjugate>
struct complex_products {
    V straight, crossed;
    VOX_INLINE void add(V first, V second) {
        const V x = in_register(first), y = in_register(second);
        straight = fma(x, y, straight);
        crossed = fma(x, swap_pairs(y), crossed);
    }
    VOX_INLINE void merge(const complex_products &other) {
        straight += other.straight;
        crossed += other.crossed;
    }
    VOX_INLINE auto total() const {
        using R = std::remove_reference_t<decltype(V{}[0])>;
        const V signs = broadcast_pair<int(sizeof(V))>(R(1), R(-1));
        const V parts_of_sum[2] = {Conjugate ? straight : straight * signs,
                                   Conjugate ? crossed * signs : crossed};
        R sum[2];
        reduce_add_all(parts_of_sum, sum);
        return vox::make<std::conditional_t<sizeof(R) == 4, vox_complex_float, vox_complex_double>>(
            sum[0], sum[1]);
    }
};
template <class V>
struct plain_products : complex_products<V, false> {};
template <class V>
struct conjugated_products : complex_products<V, true> {};

} // namespace

#define DOT(name, sum, result, A, T)                                                               \
    extern "C" result VOX_KERNEL(blas, name) VOX_DOT_PARAMETERS(T, index_t) {                      \
        return reduce<sum, A, parts<T>>(*n, source(x, *incx), source(y, *incy));                   \
    }
DOT(sdot, products, float, float, float)
DOT(ddot, products, double, double, double)
DOT(dsdot, products, double, double, float)
DOT(cdotu, plain_products, vox_complex_float, float, vox_complex_float)
DOT(zdotu, plain_products, vox_complex_double, double, vox_complex_double)
DOT(cdotc, conjugated_products, vox_complex_float, float, vox_complex_float)
DOT(zdotc, conjugated_products, vox_complex_double, double, vox_complex_double)
