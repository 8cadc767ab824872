// ln.cpp - natural logarithms.
#include "vm/kernels/logarithms.hpp"
#include "vm/kernels/loops.hpp"

VOX_VM_DECLARE_FIX_1(Ln)

namespace {

using vm::vec;

template <class T, int accuracy>
struct ln {
    static constexpr int vectors = 2;
    VOX_VM_FIX(Ln)
    vec<T> operator()(vec<T> x, vm::mask<T> &rare) const {
        const auto [k, m] = vm::split<T>(x);
        const auto e = vm::lookup<T>(vm::words<T>(m));
        const vec<T> r = vm::reduced<T>(m, e.c);
        const vec<T> a = vm::fma(k, vm::all(vm::ln2<T>.head), e.head);
        const vec<T> b = vm::fma(k, vm::all(vm::ln2<T>.tail), e.tail);
        const vec<T> square = r * r, head = a + r, rounding = r - (head - a);
        const vec<T> tail = vm::fma(square, vm::ln1p_rest<T>(r, square), b + rounding);
        const vec<T> result = head + tail;
#if defined(__AVX512F__)
        rare = vm::not_less(simd::abs(result), vm::all(T(__builtin_inf())));
#else
        rare = vm::not_less_equal(vm::all(vm::format<T>::smallest_normal), x) |
               vm::not_less(x, vm::all(T(__builtin_inf())));
#endif
        return result;
    }
};

} // namespace

VOX_VM_KERNELS_1I_1O(d, double, Ln, ln)
VOX_VM_KERNELS_1I_1O(s, float, Ln, ln)
