// elementwise.hpp - the loop of all routines that treat the elements of one vector or two alike:
// scal, copy, swap, axpy, axpby, rot, rotm.
//
//   elementwise(n, in(x, incx), update(y, incy), [=](auto &a, auto &b) { b = plus_times(b, alpha, a); });
//
// calls the operation on vectors, and on single elements at the end and where an increment is not
// one. Elements are then taken strictly in order, so that operands with increment zero see every
// step, as in the reference BLAS.
#pragma once

#include "blas/kernels/elements.hpp"

namespace {

// How an operand takes part: what is not read is handed to the operation as zeros.
template <class T, bool Reads, bool Writes>
struct operand {
    using R = real_of<T>;
    R *p;
    index_t inc; // in lanes

    VOX_INLINE operand(T *x, index_t increment) : p(flat(x)), inc(increment * parts<T>) {}
    VOX_INLINE bool contiguous() const { return inc == parts<T>; }
    VOX_INLINE void to_first(index_t n) { p = first_element(p, n, inc); }
    template <class V>
    VOX_INLINE V get(index_t i) const {
        if constexpr (!Reads)
            return V{};
        else
            return element_of<R, int(sizeof(V) / sizeof(R))>::load_from(p + i);
    }
    template <class V>
    VOX_INLINE void put(index_t i, V v) const {
        if constexpr (Writes && sizeof(V) == sizeof(R))
            p[i] = v;
        else if constexpr (Writes)
            store(p + i, v);
    }
};
// No operand.
struct absent {
    static constexpr index_t inc = 0;
    VOX_INLINE bool contiguous() const { return true; }
    VOX_INLINE void to_first(index_t) {}
    template <class V>
    VOX_INLINE V get(index_t) const {
        return V{};
    }
    template <class V>
    VOX_INLINE void put(index_t, V) const {}
};

template <class T>
VOX_INLINE auto in(const T *x, index_t inc) {
    return operand<T, true, false>(const_cast<T *>(x), inc);
}
template <class T>
VOX_INLINE auto out(T *x, index_t inc) {
    return operand<T, false, true>(x, inc);
}
template <class T>
VOX_INLINE auto update(T *x, index_t inc) {
    return operand<T, true, true>(x, inc);
}

// Whole blocks of so many vectors; i is the first lane that is left.
template <class R, int Bytes, int Vectors, class X, class Y, class Operation>
VOX_INLINE void blocks(index_t &i, index_t lanes_end, const X &x, const Y &y,
                       const Operation &operation) {
    using V = typename vec_of<R, Bytes>::type;
    constexpr int w = Bytes / int(sizeof(R));
    for (; i + Vectors * w <= lanes_end; i += Vectors * w) {
        V a[Vectors], b[Vectors];
        unroll<Vectors>([&](auto k) {
            a[k] = x.template get<V>(i + k * w);
            b[k] = y.template get<V>(i + k * w);
        });
        unroll<Vectors>([&](auto k) { operation(a[k], b[k]); });
        unroll<Vectors>([&](auto k) {
            x.put(i + k * w, a[k]);
            y.put(i + k * w, b[k]);
        });
    }
}

template <class T, class X, class Y, class Operation>
VOX_INLINE void one_by_one(index_t n, const X &x, index_t ix, const Y &y, index_t iy,
                           const Operation &operation) {
    using E = element<real_of<T>, parts<T>>;
    for (; n > 0; --n, ix += x.inc, iy += y.inc) {
        E a = x.template get<E>(ix), b = y.template get<E>(iy);
        operation(a, b);
        x.put(ix, a);
        y.put(iy, b);
    }
}

template <class T, class X, class Y, class Operation>
VOX_INLINE void elementwise(index_t n, X x, Y y, const Operation &operation) {
    using R = real_of<T>;
    index_t i = 0;
    if (VOX_LIKELY(x.contiguous() && y.contiguous())) {
        const index_t end = n * parts<T>;
        blocks<R, vector_bytes, 4>(i, end, x, y, operation);
        blocks<R, vector_bytes, 1>(i, end, x, y, operation);
        if constexpr (vector_bytes > 32)
            blocks<R, 32, 1>(i, end, x, y, operation);
        if constexpr (vector_bytes > 16)
            blocks<R, 16, 1>(i, end, x, y, operation);
        one_by_one<T>((end - i) / parts<T>, x, i, y, i, operation);
    } else {
        x.to_first(n);
        y.to_first(n);
        one_by_one<T>(n, x, 0, y, 0, operation);
    }
}

} // namespace
