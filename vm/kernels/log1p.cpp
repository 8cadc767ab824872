// log1p.cpp - ln(1 + x). Arguments up to -1, infinities, NaNs and the smallest numbers are left to the fix-up.
//
// With a table: of u = 1 + x as rounded come k and c, but r is computed from x, so that nothing is lost.
#include "vm/kernels/logarithms.hpp"
#include "vm/kernels/logarithms_single.hpp"
#include "vm/kernels/loops.hpp"
#include "vm/kernels/ranges.hpp"

VOX_VM_DECLARE_FIX_1(Log1p)

namespace {

using vm::vec;
namespace logs = vm::logs;

// Infinite or NaN, -1 or beyond, or so small that the result of a low accuracy may be subnormal.
template <class T>
vm::mask<T> special(vec<T> x) {
    const auto tiny = vm::too_small(simd::abs(x)) & vm::not_equal(x, vec<T>{});
    return tiny | vm::not_less(logs::all(T(-1)), x) |
           vm::not_less(x, logs::all(T(__builtin_inf())));
}

template <class T, int accuracy>
struct log1p {
    static constexpr int vectors = sizeof(vec<T>) == 64 ? 4 : logs::from_table<T> ? 2 : 3;
    VOX_VM_FIX(Log1p)
    vec<T> operator()(vec<T> x, vm::mask<T> &rare) const {
        vec<T> result;
        if constexpr (logs::from_table<T>) {
            constexpr logs::kind kind = logs::kind_of(accuracy);
            const vec<T> u = x + 1, k = logs::split<T, kind>(u).k;
            const auto entries = logs::lookup<T, kind>(u);
            const logs::reduced_sum<T, accuracy == TQM_HA> sum(x, u, k, entries.c);
            if constexpr (accuracy == TQM_HA)
                result = logs::accurate_ln<T>(k, entries, sum.r, sum.lost);
            else
                result = logs::rough_ln<T, accuracy>(k, entries, sum.r);
        } else {
            result = logs::ln1p<accuracy>(x);
        }
        rare = special<T>(x);
        // The sign is that of x, for zeros too.
        constexpr auto sign = logs::word<T>(1) << (8 * sizeof(T) - 1);
        using words = logs::words<T>;
        return vec<T>(words(result) | (words(x) & sign));
    }
    // Of small numbers it is wrong about zeros.
    template <int N>
    static bool suspicious(const vec<T> (&x)[N][1], const vec<T> (&)[N]) {
        vec<T> smallest = simd::abs(x[0][0]);
        simd::unroll<N - 1>([&](auto v) VOX_INLINED {
            smallest = vm::min(smallest, vec<T>(simd::abs(x[v + 1][0])));
        });
        const auto small = vm::too_small(smallest);
        const auto [least, sum] = logs::extent(x);
        return vm::any_lane(vm::either(vm::either(small, vm::not_less(logs::all(T(-1)), least)),
                                       vm::not_finite(sum)));
    }
};

} // namespace

VOX_VM_KERNELS_1I_1O(d, double, Log1p, log1p)
VOX_VM_KERNELS_1I_1O(s, float, Log1p, log1p)
