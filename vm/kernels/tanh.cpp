// tanh.cpp - hyperbolic tangents in double precision.
//
// With u = e^(2|x|) - 1, tanh |x| = u / (u + 2). With 2^n e^r for the exponential (see exponents.hpp) and a = 2^n - 1,
// u is a + 2^n (e^r - 1), which loses nothing: a is 0 or of the larger size. From |x| = 20 on the result is 1.
#include "vm/kernels/exp_series.hpp"
#include "vm/kernels/loops.hpp"

VOX_VM_DECLARE_FIX_1(Tanh)

namespace {

using vm::fma;
using vm::vec;
using V = vec<double>;

// a + b where |a| >= |b| or a = 0: rounded, and what is lost.
struct exact_sum {
    V head, tail;
    exact_sum(V a, V b) : head(a + b), tail(b - (head - a)) {}
};

// v with so few bits that a product of two is exact.
inline V shortened(V v) { return V(vm::bits<V>(v) & ~((uint64_t(1) << 27) - 1)); }

// (2^n - 1 + 2^n (e^r - 1)) / (2^n + 1 + 2^n (e^r - 1)) within 0.1 ulp more than its rounding.
inline V accurate_ratio(vm::scaled<V> power, vm::reduced<V> r) {
    const V rounded = r.head - r.tail, square = rounded * rounded;
    const V series = vm::exp_series<TQM_HA>(rounded, square);
    const V a = power.head - 1.0;
    // 2^n (e^r - 1) = r.head + a r.head + 2^n (the rest).
    const exact_sum u(a, r.head);
    const V u_tail =
        u.tail + fma(a, r.head, power.head * fma(square, series, power.tail - r.tail));
    const V larger = vm::max(u.head, V{} + 2.0), smaller = vm::min(u.head, V{} + 2.0);
    if constexpr (vm::fused) {
        const V d = u.head + 2.0, d_tail = smaller - (d - larger), inverse = 1.0 / d;
        const V q = u.head * inverse;
        const V rest = fma(-q, d, u.head) + fma(-q, d_tail, u_tail);
        return fma(rest, inverse, q);
    } else {
        const V sum = u.head + 2.0, inverse = 1.0 / sum;
        const V d = shortened(sum), d_tail = smaller - (d - larger);
        const V q = shortened(u.head * inverse);
        const V rest = (u.head - q * d) + (u_tail - q * d_tail);
        return q + rest * inverse;
    }
}

template <class T, int accuracy>
struct tanh {
    static constexpr int vectors = 2;
    VOX_VM_FIX(Tanh)
    V operator()(V x, vm::mask<T> &rare) const {
        const V size = simd::abs(x);
        // Subnormal numbers, but not zeros.
        rare = vm::less(size, V{} + 0x1p-1022) & vm::less(V{}, size);
        const V y = vm::min(V{} + 20.0, size) * 2.0, t = vm::nearest_step(y); // NaN stays
        const auto power = vm::two_to(t);
        V result;
        if constexpr (accuracy == TQM_HA) {
            result = accurate_ratio(power, vm::from_step(y, t));
        } else {
            V growth;
            if constexpr (accuracy == TQM_LA) {
                const auto reduced = vm::from_step(y, t);
                const V r = reduced.head - reduced.tail, square = r * r;
                growth = fma(square, vm::exp_series<TQM_LA>(r, square), r + power.tail);
            } else {
                const V r = vm::roughly_from_step(y, t);
                growth = r * vm::rough_series(r);
            }
            const V u = fma(power.head, growth, power.head - 1.0);
            result = u / (u + 2.0);
        }
        return vm::with_sign(result, x);
    }
};

} // namespace

VOX_VM_KERNELS_1I_1O(d, double, Tanh, tanh)
