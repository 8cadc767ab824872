// operations.hpp - what happens to an element on its way from A to B, for vectors and for single
// elements alike, with the same bits.
//
// Elements are moved as floats or doubles of their size whatever they mean, and as two doubles where
// they have sixteen bytes. An operation takes a vector of any length of these, or an element.
#pragma once

#include "serv/scalar.hpp"
#include "serv/tile.hpp"

namespace {
namespace trans {

using namespace simd;
using vox::index_t;
using vox::is_complex;
using vox::real_of;

template <class T>
using mover = std::conditional_t<sizeof(T) == 4, float, double>;

// Movers of an element.
template <class T>
constexpr int parts = int(sizeof(T) / sizeof(mover<T>));

template <class T>
VOX_INLINE const mover<T> *flat(const T *p) {
    return reinterpret_cast<const mover<T> *>(p);
}
template <class T>
VOX_INLINE mover<T> *flat(T *p) {
    return reinterpret_cast<mover<T> *>(p);
}

// V's bytes as numbers; an element of a real type is one.
template <class T, class V>
struct numbers_of {
    using type = typename vec_of<real_of<T>, int(sizeof(V))>::type;
};
template <class T>
struct numbers_of<T, T> {
    using type = T;
};
template <class T, class V>
using numbers = typename numbers_of<T, V>::type;

// x, bit by bit.
template <class T>
struct moved {
    template <class V>
    VOX_INLINE V operator()(V v) const {
        return v;
    }
};

// conj(x): a sign is changed, nothing is computed.
template <class T>
struct conjugated {
    template <class V>
    VOX_INLINE V operator()(V v) const {
        using bits = decltype(numbers<T, V>{} < numbers<T, V>{});
        return V(bits(v) ^ bits(broadcast_pair<int(sizeof(V))>(real_of<T>(0), -real_of<T>(0))));
    }
};

// alpha x, and alpha conj(x) for complex numbers: p x + q swapped x with pairs p and q. The second
// product is rounded first wherever the compiler would fuse, so that no element depends on whether
// its neighbours are in the same vector.
template <class T>
struct scaled {
    T alpha;
    bool conjugate;

    template <class V>
    VOX_INLINE V operator()(V v) const {
        using N = numbers<T, V>;
        if constexpr (is_complex<T>) {
            constexpr int bytes = int(sizeof(V));
            const auto sign = conjugate ? real_of<T>(-1) : real_of<T>(1);
            const N p = broadcast_pair<bytes>(alpha.real, sign * alpha.real);
            const N q = broadcast_pair<bytes>(-sign * alpha.imag, alpha.imag);
            const N second = in_register(N(q * swap_pairs(N(v))));
            return V(p * N(v) + second);
        } else {
            return V(N(v) * alpha);
        }
    }
};

// One element: a number, or a vector of two.
template <class T>
VOX_INLINE auto load_element(const T *p) {
    if constexpr (is_complex<T>)
        return load<int(sizeof(T))>(reinterpret_cast<const real_of<T> *>(p));
    else
        return *p;
}
template <class T, class V>
VOX_INLINE void store_element(T *p, V v) {
    if constexpr (is_complex<T>)
        store(reinterpret_cast<real_of<T> *>(p), v);
    else
        *p = v;
}
template <class T, class Op>
VOX_INLINE void one_element(const Op &op, const T *a, T *b) {
    store_element(b, op(load_element(a)));
}

} // namespace trans
} // namespace
