// elementwise.hpp - the loop of all routines that treat the elements of one vector or two alike:
// scal, copy, swap, axpy, axpby, rot, rotm.
//
//   elementwise(n, in(x, incx), update(y, incy), [=](auto &a, auto &b) { b = plus_times(b, alpha, a); });
//
// calls the operation on vectors, on ever shorter ones at the end, and on single elements where an
// increment is not one. Those are taken strictly in order, so that operands with increment zero see
// every step, as in the reference BLAS.
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

// One vector, or so many at once, from lane i on.
template <class R, int Bytes, int Vectors, class X, class Y, class Operation>
VOX_INLINE void block(index_t i, const X &x, const Y &y, const Operation &operation) {
    constexpr int w = Bytes / int(sizeof(R));
    using V = element<R, w>;
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

// What is left of `end` lanes, fewer than 2 Lanes: by halves, which the bits of `end` tell.
template <class T, int Lanes, class X, class Y, class Operation>
VOX_INLINE void rest(index_t i, index_t end, const X &x, const Y &y, const Operation &operation) {
    using R = real_of<T>;
    if constexpr (Lanes >= parts<T>) {
        constexpr int vectors = Lanes > lanes<R> ? Lanes / lanes<R> : 1;
        if (end & Lanes) {
            block<R, Lanes *int(sizeof(R)) / vectors, vectors>(i, x, y, operation);
            i += Lanes;
        }
        rest<T, Lanes / 2>(i, end, x, y, operation);
    }
}

template <class T, class X, class Y, class Operation>
VOX_INLINE void contiguous(index_t end, const X &x, const Y &y, const Operation &operation) {
    constexpr int w = 4 * lanes<real_of<T>>;
    index_t i = 0;
    if constexpr (vector_bytes == 64)
        if (VOX_UNLIKELY(end * index_t(sizeof(real_of<T>)) >= far_bytes / 2))
            for (; i + w <= end; i += w)
                block<real_of<T>, 32, 8>(i, x, y, operation);
    for (; i + w <= end; i += w)
        block<real_of<T>, vector_bytes, 4>(i, x, y, operation);
    rest<T, w / 2>(i, end, x, y, operation);
}

template <class T, class X, class Y, class Operation>
__attribute__((noinline)) void strided(index_t n, X x, Y y, Operation operation) {
    using E = element<real_of<T>, parts<T>>;
    x.to_first(n);
    y.to_first(n);
    for (index_t ix = 0, iy = 0; n > 0; --n, ix += x.inc, iy += y.inc) {
        E a = x.template get<E>(ix), b = y.template get<E>(iy);
        operation(a, b);
        x.put(ix, a);
        y.put(iy, b);
    }
}

template <class T, class X, class Y, class Operation>
VOX_INLINE void elementwise(index_t n, X x, Y y, const Operation &operation) {
    if (VOX_LIKELY(x.contiguous() && y.contiguous()))
        contiguous<T>(n * parts<T>, x, y, operation);
    else
        strided<T>(n, x, y, operation);
}

} // namespace
