// parts.hpp - level 1 on several threads: vectors of n elements cut into parts.
//
// How many parts there are depends on n and the thread count alone, so results do too, even when the
// runtime delivers a smaller team.
#pragma once

#include "serv/base.hpp"
#include "serv/parallel.hpp"
#include "serv/scratch.hpp"
#include "vox/service.h"

namespace vox::parts {

// When vectors are cut: from so many elements on, into parts of at least so many.
struct rule {
    index_t from, part;
};

// Vectors of so many bytes each, and parts of half as many.
template <class T>
constexpr rule from_bytes(index_t bytes) {
    return {bytes / index_t(sizeof(T)), bytes / 2 / index_t(sizeof(T))};
}

// Elements start .. start + length - 1 of n.
struct piece {
    index_t n, start, length;

    // With a negative increment a vector begins at its end, and so does its part.
    template <class T>
    [[gnu::always_inline]] T *of(T *x, index_t incx) const {
        return x + (incx < 0 ? start + length - n : start) * incx;
    }
};

// What decides whether vectors can be cut at all: with a zero increment, all elements are one.
struct increments {
    index_t x, y = 1;
    bool divisible() const { return x != 0 && y != 0; }
};

// All of n elements, on the calling thread.
struct whole {
    index_t length;
    static constexpr index_t start = 0;

    template <class T>
    [[gnu::always_inline]] T *of(T *x, index_t) const {
        return x;
    }
};

// Calls a kernel, with integers by address: of copies, so that the caller's stay in registers.
[[gnu::always_inline]] inline const index_t *kernel_argument(const index_t &integer) {
    return &integer;
}
template <class T>
[[gnu::always_inline]] inline T *kernel_argument(T *const &pointer) {
    return pointer;
}
template <class Kernel, class... A>
[[gnu::always_inline]] inline auto call(Kernel kernel, A... arguments) {
    return kernel(kernel_argument(arguments)...);
}

inline index_t count(index_t n, rule r) {
    const index_t threads = vox_serv_domain_get_max_threads(VOX_DOMAIN_BLAS);
    const index_t most = (n + r.part - 1) / r.part;
    return most < threads ? most : threads;
}

// body(part, piece) for every part.
template <class Body>
inline void for_each(index_t parts, index_t n, const Body &body) {
    parallel(int(parts), [&](int thread, int threads) {
        for (index_t part = thread; part < parts; part += threads) {
            piece p = {n, 0, 0};
            p.start = vox_serv_divbythreads(&part, &parts, &n, &p.length);
            body(part, p);
        }
    });
}

template <class Body>
[[gnu::noinline]] void update_in_parts(index_t n, rule r, increments inc, const Body &body) {
    if (inc.divisible())
        for_each(count(n, r), n, [&](index_t, const piece &p) { body(p); });
    else
        body(whole{n});
}

// Runs body over all of n elements, as a whole or piece by piece.
template <class Body>
[[gnu::always_inline]] inline void update(index_t n, rule r, increments inc, Body body) {
    if (VOX_LIKELY(n < r.from))
        return body(whole{n});
    const Body in_memory = body; // here alone: the body of a short call stays in registers
    update_in_parts(n, r, inc, in_memory);
}

constexpr index_t max_on_stack = 512; // partial results

template <class R, class Body, class Join>
[[gnu::noinline]] R reduce_in_parts(index_t n, rule r, increments inc, const Body &body,
                                    Join join) {
    const index_t parts = inc.divisible() ? count(n, r) : 1;
    const auto in = [&](R *partial) {
        for_each(parts, n, [&](index_t part, const piece &p) { partial[part] = body(p); });
        return join(partial, parts);
    };
    if (parts > 1 && parts <= max_on_stack) {
        R partial[max_on_stack];
        return in(partial);
    }
    if (parts > 1) {
        const scratch<R> partial(parts, 128);
        if (!partial.empty())
            return in(partial.data());
    }
    return body(whole{n});
}

// The result of body over all of n elements, or join(partial results, their number) when they are cut.
template <class R, class Body, class Join>
[[gnu::always_inline]] inline R reduce(index_t n, rule r, increments inc, Body body, Join join) {
    if (VOX_LIKELY(n < r.from))
        return body(whole{n});
    const Body in_memory = body; // here alone: the body of a short call stays in registers
    return reduce_in_parts<R>(n, r, inc, in_memory, join);
}

// Partial 0 plus the sum of the others, the latter in four two-wide accumulators over groups of
// eight.
template <class T>
T sum(const T *partial, index_t parts) {
    T sum[8] = {};
    for (index_t i = 1; i < parts; ++i)
        sum[(i - 1) % 8] += partial[i];
    T pair[2];
    for (int i = 0; i < 2; ++i)
        pair[i] = (sum[i] + sum[2 + i]) + (sum[4 + i] + sum[6 + i]);
    return partial[0] + (pair[0] + pair[1]);
}

} // namespace vox::parts
