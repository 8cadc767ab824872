// integers.cpp - roundings to integers: up, down, and to the nearest with halves away from zero. The sign of the
// argument stays, zeros included.
#include "vm/kernels/loops.hpp"

namespace {

using vm::vec;

enum class direction { down, up, to_zero };

template <class T>
inline vec<T> with_sign_of(vec<T> x, vec<T> magnitude) {
    using bits = decltype(x < x);
    using integer = std::remove_cvref_t<decltype(bits{}[0])>;
    const bits sign = bits{} + (integer(1) << (8 * sizeof(T) - 1));
    return vec<T>((bits(x) & sign) | bits(magnitude));
}

#if defined(__SSE4_1__)
constexpr int mode_of(direction d) {
    return (d == direction::down ? _MM_FROUND_TO_NEG_INF
            : d == direction::up ? _MM_FROUND_TO_POS_INF
                                 : _MM_FROUND_TO_ZERO) |
           _MM_FROUND_NO_EXC;
}
#if defined(__AVX512F__)
#define ROUND_D(x, mode) _mm512_maskz_roundscale_pd(0xFF, x, mode)
#define ROUND_S(x, mode) _mm512_maskz_roundscale_ps(0xFFFF, x, mode)
#elif defined(__AVX__)
#define ROUND_D(x, mode) _mm256_round_pd(x, mode)
#define ROUND_S(x, mode) _mm256_round_ps(x, mode)
#else
#define ROUND_D(x, mode) _mm_round_pd(x, mode)
#define ROUND_S(x, mode) _mm_round_ps(x, mode)
#endif
template <direction d>
inline vec<double> integer(vec<double> x) {
    return ROUND_D(x, mode_of(d));
}
template <direction d>
inline vec<float> integer(vec<float> x) {
    return ROUND_S(x, mode_of(d));
}
#undef ROUND_D
#undef ROUND_S
#else
// A number that is added and subtracted again leaves the nearest integer, if the sum's last bit is worth 1. From
// there it is at most one step. What is too large for that is an integer, or no number.
template <direction d, class V>
inline V integer(V x) {
    using T = std::remove_cvref_t<decltype(x[0])>;
    using bits = decltype(x < x);
    constexpr T limit = sizeof(T) == 8 ? T(0x1p52) : T(0x1p23);
    const V magnitude = simd::abs(x), one = V{} + T(1);
    const V from = d == direction::to_zero ? magnitude : x;
    const V shift = V(bits(with_sign_of<T>(from, V{} + limit)) & (magnitude < V{} + limit));
    V nearest = (from + shift) - shift;
    if constexpr (d == direction::up)
        nearest = nearest + V(bits(one) & (nearest < from));
    else
        nearest = nearest - V(bits(one) & (nearest > from));
    return with_sign_of<T>(x, nearest);
}
#endif

template <class T>
struct floor {
    static constexpr int vectors = 4;
    static constexpr bool fixes = false;
    vec<T> operator()(vec<T> x, vm::mask<T> &) const { return integer<direction::down>(x); }
};

template <class T>
struct ceil {
    static constexpr int vectors = 4;
    static constexpr bool fixes = false;
    vec<T> operator()(vec<T> x, vm::mask<T> &) const { return integer<direction::up>(x); }
};

// The number below 1/2 is added, since 1/2 would carry that number itself up to 1; with any other the sum is
// rounded to the right side of the next integer.
template <class T>
struct round {
    static constexpr int vectors = 4;
    static constexpr bool fixes = false;
    vec<T> operator()(vec<T> x, vm::mask<T> &) const {
        constexpr T below_half = sizeof(T) == 8 ? T(0x1.fffffffffffffp-2) : T(0x1.fffffep-2);
        return integer<direction::to_zero>(x + with_sign_of<T>(x, vec<T>{} + below_half));
    }
};

} // namespace

VOX_VM_KERNEL_ONE(1I_1O, Ceil, ceil)
VOX_VM_KERNEL_ONE(1I_1O, Floor, floor)
VOX_VM_KERNEL_ONE(1I_1O, Round, round)
