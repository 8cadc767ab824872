// loops.hpp - what a program does around vector functions that take and return registers: a loop over arrays.
//
// loops_16.cpp, loops_32.cpp and loops_64.cpp make it for vectors of so many bytes, each with the instructions
// that its vectors need. Everything but the tables has internal linkage: no code of a wide copy may be taken
// for that of a narrower one.
#pragma once

#include "bench/vm/peers.hpp"

namespace vm_peers {
namespace {

template <class T, int Bytes>
struct vector_of {
    typedef T type __attribute__((vector_size(Bytes)));
    typedef T unaligned __attribute__((vector_size(Bytes), aligned(alignof(T)), may_alias));
};

// steps: vectors of a round; one where there is a call, which is slower in an inner loop.
template <class T, int Bytes, int steps, class Body>
inline void loop(long n, const void *a, const void *b, void *r, const Body &body) {
    using V = typename vector_of<T, Bytes>::type;
    using U = typename vector_of<T, Bytes>::unaligned;
    constexpr long lanes = Bytes / long(sizeof(T));
    const T *const x = static_cast<const T *>(a), *const y = static_cast<const T *>(b);
    T *const to = static_cast<T *>(r);
    const auto step = [&](long i) {
        *reinterpret_cast<U *>(to + i) =
            body(V(*reinterpret_cast<const U *>(x + i)), V(*reinterpret_cast<const U *>(y + i)));
    };
    long i = 0;
    for (; i + steps * lanes <= n; i += steps * lanes)
        for (long k = 0; k < steps; ++k)
            step(i + k * lanes);
    if constexpr (steps > 1)
        for (; i + lanes <= n; i += lanes)
            step(i);
}

template <class T, int Bytes>
void call_1(void *f, long n, const void *a, const void *, void *r) {
    using V = typename vector_of<T, Bytes>::type;
    auto *const of_vector = reinterpret_cast<V (*)(V)>(f);
    loop<T, Bytes, 1>(n, a, a, r, [=](V x, V) { return of_vector(x); });
}

template <class T, int Bytes>
void call_2(void *f, long n, const void *a, const void *b, void *r) {
    using V = typename vector_of<T, Bytes>::type;
    auto *const of_vectors = reinterpret_cast<V (*)(V, V)>(f);
    loop<T, Bytes, 1>(n, a, b, r, [=](V x, V y) { return of_vectors(x, y); });
}

template <class T, int Bytes>
void plain(operation o, long n, const void *a, const void *b, void *r) {
    using V = typename vector_of<T, Bytes>::type;
    switch (o) {
    case operation::copy:
        return loop<T, Bytes, 4>(n, a, a, r, [](V x, V) { return x; });
    case operation::sum:
        return loop<T, Bytes, 4>(n, a, b, r, [](V x, V y) { return x + y; });
    case operation::product:
        return loop<T, Bytes, 4>(n, a, b, r, [](V x, V y) { return x * y; });
    case operation::square:
        return loop<T, Bytes, 4>(n, a, a, r, [](V x, V) { return x * x; });
    case operation::quotient:
        return loop<T, Bytes, 4>(n, a, b, r, [](V x, V y) { return x / y; });
    case operation::inverse:
        return loop<T, Bytes, 4>(n, a, a, r, [](V x, V) { return T(1) / x; });
    case operation::root: {
        const T *const x = static_cast<const T *>(a);
        T *const __restrict to = static_cast<T *>(r);
        for (long i = 0; i < n; ++i)
            to[i] = T(__builtin_sqrt(x[i]));
        return;
    }
    case operation::none:
        return;
    }
}

template <int Bytes>
constexpr loops loops_of() {
    return {{call_1<float, Bytes>, call_1<double, Bytes>},
            {call_2<float, Bytes>, call_2<double, Bytes>},
            {plain<float, Bytes>, plain<double, Bytes>}};
}

} // namespace
} // namespace vm_peers
