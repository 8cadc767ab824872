// loops.hpp - a function of vectors over arrays.
//
// A function is a struct, here of one argument; of two it takes x and y:
//
//   template <class T, int accuracy> struct exp {
//       static constexpr int vectors = 2;                     // in flight at a time
//       static constexpr bool fixes = true;
//       vec<T> operator()(vec<T> x, mask<T> &rare) const;
//       static void fix(const T *first, index_t i, T x, T *r); // vm/fixup.hpp
//   };
//
// It marks the lanes that its result does not hold for, and these elements go to its fix-up; without one, `fixes`
// is false and nothing is marked. A function that costs no more than its marks may have a quicker look at several
// vectors, x[vectors][1] and their results,
//
//       static bool suspicious(const vec<T> (&x)[N][1], const vec<T> (&y)[N]);
//
// which misses none that is marked, and may take a few for marked that are not.
//
// The result of an element depends on nothing but its arguments: the last elements, fewer than a vector, go through
// the same operations, in the company of ones.
//
//   VOX_VM_KERNELS_1I_1O(d, double, Exp, exp)
//
// makes the kernels of the three accuracies.
#pragma once

#include "vm/kernels/masks.hpp"
#include "vox/tqm.h"

namespace {
namespace vm {

// The vectors of arguments. By value: in registers, whatever calls there are.
template <class T, int K>
struct inputs {
    const T *vector[K];
    const T *operator[](int k) const { return vector[k]; }
};

// A function that looks something up may ask where its arguments lie, operator()(x, place, rare): there are integers
// to be had sooner than out of vectors.
template <class F, class T>
constexpr bool asks_for_place = requires(const F &f, vec<T> x, const T *place, mask<T> &rare) {
    f(x, place, rare);
};

template <class F, class T>
VOX_INLINED inline vec<T> apply(const F &f, const vec<T> (&x)[1], [[maybe_unused]] const T *place,
                                mask<T> &rare) {
    if constexpr (asks_for_place<F, T>)
        return f(x[0], place, rare);
    else
        return f(x[0], rare);
}
template <class F, class T>
VOX_INLINED inline vec<T> apply(const F &f, const vec<T> (&x)[2], const T *, mask<T> &rare) {
    return f(x[0], x[1], rare);
}

// The marked elements of a vector that begins at element i. x: its arguments, which the results may have
// overwritten in memory.
template <class F, class T, int K>
__attribute__((cold, noinline)) void fix(const F &f, const T *first, index_t i, unsigned marked,
                                         const vec<T> (&x)[K], T *r) {
    for (; marked; marked &= marked - 1) {
        const int lane = __builtin_ctz(marked);
        if constexpr (K == 1)
            f.fix(first, i + lane, x[0][lane], &r[i + lane]);
        else
            f.fix(first, i + lane, x[0][lane], x[1][lane], &r[i + lane]);
    }
}

// Elements i to n, vector by vector: what is before and behind the loop of several vectors.
template <class F, class T, int K>
__attribute__((noinline)) void map_slowly(const F &f, index_t i, index_t n, inputs<T, K> in, T *r) {
    constexpr int L = lanes<T>;
    for (; i < n; i += L) {
        const index_t count = n - i;
        vec<T> x[K];
        if (count >= L)
            simd::unroll<K>([&](auto k) VOX_INLINED { x[k] = simd::load(in[k] + i); });
        else
            simd::unroll<K>([&](auto k) VOX_INLINED {
                x[k] = simd::select_first(count, simd::load_partial(in[k] + i, count),
                                          vec<T>{} + T(1));
            });
        const T *place = in[0] + i;
        [[maybe_unused]] T padded[L];
        if constexpr (asks_for_place<F, T>)
            if (count < L) {
                simd::store(padded, x[0]);
                place = padded;
            }
        mask<T> rare = no_lane<T>;
        const vec<T> y = apply<F, T>(f, x, place, rare);
        if (count >= L)
            simd::store(r + i, y);
        else
            simd::store_partial(r + i, y, count);
        if constexpr (F::fixes)
            if (VOX_UNLIKELY(any_lane(rare))) {
                const unsigned there = count >= L ? ~0u : (1u << count) - 1;
                if (const unsigned marked = lane_bits(rare) & there)
                    fix(f, in[0], i, marked, x, r);
            }
    }
}

// Whether anything is marked among N vectors from element i on. The arguments are loaded again, so that the loop
// that asks need not keep them.
template <int N, class F, class T, int K>
VOX_INLINED inline bool any_marked(const F &f, index_t i, inputs<T, K> in) {
    for (const T *&vector : in.vector)
        __asm__("" : "+r"(vector));
    mask<T> rare = no_lane<T>;
    simd::unroll<N>([&](auto v) VOX_INLINED {
        vec<T> x[K];
        simd::unroll<K>([&](auto k) VOX_INLINED { x[k] = simd::load(in[k] + i + v * lanes<T>); });
        mask<T> of_vector = no_lane<T>;
        apply<F, T>(f, x, in[0] + i + v * lanes<T>, of_vector);
        rare = either(rare, of_vector);
    });
    return any_lane(rare);
}

// Stores of at least so many vectors are aligned: those across two cache lines cost twice.
constexpr index_t shortest_aligned = 32;

// Results that leave the last cache anyway go past the caches, unless they replace an argument, which is there. That
// saves reading what they overwrite: 1.4 to 2 times as fast from 16 MB on, and 1.1 to 1.5 with a reader behind.
constexpr index_t streamed_bytes = 16 * 1024 * 1024;

template <class T>
inline void store_past_caches(T *p, vec<T> v) {
#if defined(__AVX512F__)
    _mm512_stream_ps(reinterpret_cast<float *>(p), __m512(v));
#else
    simd::stream(p, v);
#endif
}

// r[i] = f(arguments[0][i], ...) for n elements.
template <class T, class F, int K>
VOX_INLINED inline void map(const F &f, index_t n, const T *const (&arguments)[K], T *r) {
    constexpr int L = lanes<T>, N = F::vectors;
    inputs<T, K> in;
    simd::unroll<K>([&](auto k) VOX_INLINED { in.vector[k] = arguments[k]; });
    index_t i = 0;
    if (n >= shortest_aligned * L) {
        i = index_t(-uintptr_t(r) / sizeof(T) % L);
        if (i > 0)
            map_slowly(f, 0, i, in, r);
    }
    // Elements may lie across their own alignment, so asked.
    bool past_caches =
        n >= streamed_bytes / index_t(sizeof(T)) && uintptr_t(r + i) % simd::vector_bytes == 0;
    simd::unroll<K>([&](auto k) VOX_INLINED { past_caches = past_caches && in[k] != r; });
    for (; i + N * L <= n; i += N * L) {
        vec<T> x[N][K], y[N];
        mask<T> rare = no_lane<T>;
        simd::unroll<N>([&](auto v) VOX_INLINED {
            simd::unroll<K>([&](auto k) VOX_INLINED { x[v][k] = simd::load(in[k] + i + v * L); });
            mask<T> of_vector = no_lane<T>;
            y[v] = apply<F, T>(f, x[v], in[0] + i + v * L, of_vector);
            rare = either(rare, of_vector);
        });
        // Nothing has been stored, so all can be done again.
        bool again = false;
        if constexpr (requires { F::suspicious(x, y); })
            again = VOX_UNLIKELY(F::suspicious(x, y)) && any_marked<N>(f, i, in);
        else if constexpr (F::fixes)
            again = any_lane(rare);
        if (VOX_UNLIKELY(again)) {
            map_slowly(f, i, i + N * L, in, r);
            continue;
        }
        if (VOX_UNLIKELY(past_caches))
            simd::unroll<N>([&](auto v) VOX_INLINED { store_past_caches(r + i + v * L, y[v]); });
        else
            simd::unroll<N>([&](auto v) VOX_INLINED { simd::store(r + i + v * L, y[v]); });
    }
    if (VOX_UNLIKELY(past_caches))
        simd::streaming_done();
    if (i < n)
        map_slowly(f, i, n, in, r);
}

} // namespace vm
} // namespace

#define VOX_VM_KERNEL_1I_1O(full, T, ...)                                                          \
    extern "C" void VOX_KERNEL_NAMED(vm, full)(vox::index_t n, const T *a, T *r, T) {              \
        vm::map<T>(__VA_ARGS__{}, n, {a}, r);                                                      \
    }
#define VOX_VM_KERNEL_2I_1O(full, T, ...)                                                          \
    extern "C" void VOX_KERNEL_NAMED(vm, full)(vox::index_t n, const T *a, const T *b, T *r, T) {  \
        vm::map<T>(__VA_ARGS__{}, n, {a, b}, r);                                                   \
    }
// The function is made from the fixed argument.
#define VOX_VM_KERNEL_1I_1O_FIXED(full, T, ...)                                                    \
    extern "C" void VOX_KERNEL_NAMED(vm, full)(vox::index_t n, const T *a, T *r, T fixed) {        \
        vm::map<T>(__VA_ARGS__{fixed}, n, {a}, r);                                                 \
    }
#define VOX_VM_KERNELS_OF(shape, p, T, Name, F)                                                    \
    VOX_VM_KERNEL_##shape(p##Name##_ha, T, F<T, TQM_HA>)                                           \
        VOX_VM_KERNEL_##shape(p##Name##_la, T, F<T, TQM_LA>)                                       \
            VOX_VM_KERNEL_##shape(p##Name##_ep, T, F<T, TQM_EP>)
#define VOX_VM_KERNELS_1I_1O(...) VOX_VM_KERNELS_OF(1I_1O, __VA_ARGS__)
#define VOX_VM_KERNELS_2I_1O(...) VOX_VM_KERNELS_OF(2I_1O, __VA_ARGS__)
#define VOX_VM_KERNELS_1I_1O_FIXED(...) VOX_VM_KERNELS_OF(1I_1O_FIXED, __VA_ARGS__)

// Functions with one kernel for all accuracies, in both precisions.
#define VOX_VM_KERNEL_ONE(shape, Name, F)                                                          \
    VOX_VM_KERNEL_##shape(s##Name##_ha, float, F<float>)                                           \
        VOX_VM_KERNEL_##shape(d##Name##_ha, double, F<double>)

// A function's fix-ups, and as members of its struct: VOX_VM_FIX(Exp).
#define VOX_VM_DECLARE_FIX_1(Name)                                                                 \
    extern "C" void vox_vm_fix_s##Name(const float *first, vox::index_t i, float x, float *r);     \
    extern "C" void vox_vm_fix_d##Name(const double *first, vox::index_t i, double x, double *r);
#define VOX_VM_DECLARE_FIX_2(Name)                                                                 \
    extern "C" void vox_vm_fix_s##Name(const float *first, vox::index_t i, float x, float y,       \
                                       float *r);                                                  \
    extern "C" void vox_vm_fix_d##Name(const double *first, vox::index_t i, double x, double y,    \
                                       double *r);
#define VOX_VM_FIX(Name)                                                                           \
    static constexpr bool fixes = true;                                                            \
    template <class... Arguments>                                                                  \
    static void fix(Arguments... arguments) {                                                      \
        if constexpr (sizeof(T) == 4)                                                              \
            vox_vm_fix_s##Name(arguments...);                                                      \
        else                                                                                       \
            vox_vm_fix_d##Name(arguments...);                                                      \
    }
