// ln.cpp - natural logarithms. Negative numbers, zeros, infinities and NaNs are left to the fix-up, and so are
// subnormal numbers without AVX-512.
#include "vm/kernels/logarithms.hpp"
#include "vm/kernels/logarithms_single.hpp"
#include "vm/kernels/loops.hpp"
#include "vm/kernels/ranges.hpp"

VOX_VM_DECLARE_FIX_1(Ln)

namespace {

using vm::vec;
namespace logs = vm::logs;

template <class T, int accuracy>
struct ln {
    static constexpr int vectors = sizeof(vec<T>) == 64 ? 4 : logs::from_table<T> ? 2 : 3;
    VOX_VM_FIX(Ln)
    vec<T> operator()(vec<T> x, [[maybe_unused]] const T *place, vm::mask<T> &rare) const {
        vec<T> result;
        if constexpr (logs::from_table<T>) {
            constexpr logs::kind kind = logs::kind_of(accuracy);
            const auto [k, m] = logs::split<T, kind>(x);
            const auto entries = logs::lookup<T, kind>(m, place);
            const vec<T> r = logs::reduced<T, kind>(m, entries.c);
            if constexpr (accuracy == TQM_HA)
                result = logs::accurate_ln<T>(k, entries, r);
            else
                result = logs::rough_ln<T, accuracy>(k, entries, r);
        } else {
            result = logs::ln<accuracy>(x);
        }
#if defined(__AVX512F__)
        rare = vm::not_finite(result); // exactly where x is one of these
#else
        rare = vm::not_less_equal(logs::all(vm::smallest_normal<T>), x) |
               vm::not_less(x, logs::all(T(__builtin_inf())));
#endif
        return result;
    }
    template <int N>
    static bool suspicious([[maybe_unused]] const vec<T> (&x)[N][1],
                           [[maybe_unused]] const vec<T> (&y)[N]) {
#if defined(__AVX512F__)
        return vm::any_lane(vm::not_finite_among(y));
#else
        const auto [least, sum] = logs::extent(x);
        return vm::any_lane(
            vm::either(vm::less(least, logs::all(vm::smallest_normal<T>)), vm::not_finite(sum)));
#endif
    }
};

} // namespace

VOX_VM_KERNELS_1I_1O(d, double, Ln, ln)
VOX_VM_KERNELS_1I_1O(s, float, Ln, ln)
