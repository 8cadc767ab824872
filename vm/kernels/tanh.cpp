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
template <class W>
inline W shortened(W v) {
    return W(vm::bits<W>(v) & ~((uint64_t(1) << 27) - 1));
}

// u as a sum of three: 2^n - 1, the head of r, and what remains of 2^n e^r - 1, which is small beside their sum.
struct exponential_less_one {
    V a, head, rest;
    exponential_less_one(V y, V t) {
        const auto power = vm::two_to(t);
        const auto reduced = vm::from_step(y, t);
        const V r = reduced.head - reduced.tail, square = r * r;
        const V tail = fma(power.tail, reduced.head, power.tail);
        a = power.head - 1.0;
        head = reduced.head;
        rest = fma(a, head,
                   power.head * fma(square, vm::growth_series(r, square), tail - reduced.tail));
    }
};

// u / (u + 2) within 0.1 ulp more than its rounding.
inline V accurate_ratio(exponential_less_one e) {
    const exact_sum first(e.a, e.head), u(first.head, e.rest);
    const V u_tail = first.tail + u.tail;
    const V large = vm::max(u.head, V{} + 2.0), small = vm::min(u.head, V{} + 2.0);
    if constexpr (vm::fused) {
        const V d = u.head + 2.0, d_tail = small - (d - large) + u_tail, inverse = 1.0 / d;
        const V q = u.head * inverse;
        return fma(fma(-q, d, u.head) + fma(-q, d_tail, u_tail), inverse, q);
    } else {
        const V sum = u.head + 2.0, inverse = 1.0 / sum;
        const V d = shortened(sum), d_tail = small - (d - large) + u_tail;
        const V q = shortened(u.head * inverse);
        return q + ((u.head - q * d) + (u_tail - q * d_tail)) * inverse;
    }
}

template <class T, int accuracy>
struct tanh {
    static constexpr int vectors = 2;
    VOX_VM_FIX(Tanh)
    V operator()(V x, vm::mask<T> &rare) const {
        const V size = simd::abs(x);
        rare = vm::subnormal(x);
        const V y = vm::min(V{} + 20.0, size) * 2.0, t = vm::nearest_step(y); // NaN stays
        V result;
        if constexpr (accuracy == TQM_HA) {
            result = accurate_ratio({y, t});
        } else if constexpr (accuracy == TQM_LA) {
            const exponential_less_one e(y, t);
            const V u = (e.a + e.head) + e.rest;
            result = u / (u + 2.0);
        } else {
            const V r = vm::roughly_from_step(y, t), power = vm::two_to(t).head;
            const V u = fma(power * r, vm::rough_growth_series(r), power - 1.0);
            result = u / (u + 2.0);
        }
        return vm::with_sign(result, x);
    }
};

} // namespace

VOX_VM_KERNELS_1I_1O(d, double, Tanh, tanh)
