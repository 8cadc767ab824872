// wh.cpp - numbers of the Wichmann-Hill generators, see rng/brng/wh.hpp.
//
// In doubles: products of 48 bits are exact, and the quotient by the modulus is so far from the next whole number,
// (x + 1/2) / m by 2^-25, that its rounding errors, below 2^-28, do not matter.
#include "rng/brng/wh.hpp"

#include "rng/kernels/arithmetic.hpp"
#include "rng/kernels/congruential.hpp"

namespace {

using namespace output;
using vox::rng::wh_state;

template <class T>
struct four {
    T x[4];
};

struct number {
    uint32_t x[4];
};

// Four sequences side by side.
struct value_type {
    four<vec<double>> x, inverse;
    static constexpr int lanes = simd::lanes<double>;
};

struct ring {
    using element = four<double>;
    using vector = four<vec<double>>;
    static constexpr int lanes = simd::lanes<double>, vectors = 2;

    four<vec<double>> m, inverse;

    static double of_lane(vec<double> v, double) { return v[0]; }
    static vec<double> of_lane(vec<double> v, vec<double>) { return v; }

    template <class T>
    four<T> multiply(const four<T> &x, const four<T> &y) const {
        four<T> z;
        simd::unroll<4>([&](auto i) VOX_INLINED {
            const T product = x.x[i] * y.x[i], scale = of_lane(inverse.x[i], T());
            const T quotient =
                arithmetic::floor(arithmetic::multiply_add(product, scale, 0.5 * scale));
            z.x[i] = arithmetic::multiply_add(-quotient, of_lane(m.x[i], T()), product);
        });
        return z;
    }
    static vector load(const element *p) {
        vector v;
        for (int i = 0; i < 4; ++i)
            for (int lane = 0; lane < lanes; ++lane)
                v.x[i][lane] = p[lane].x[i];
        return v;
    }
    static void store(element *p, const vector &v) {
        for (int i = 0; i < 4; ++i)
            for (int lane = 0; lane < lanes; ++lane)
                p[lane].x[i] = v.x[i][lane];
    }
    static vector broadcast(const element &x) {
        vector v;
        for (int i = 0; i < 4; ++i)
            v.x[i] = simd::broadcast(x.x[i]);
        return v;
    }
    value_type value(const vector &v) const { return {v, inverse}; }
};

struct kind {
    using word_type = number;
    static constexpr bool unit_apart = true;
    template <class Store>
    static void word(const value_type &v, Store store) {
        struct {
            number numbers[simd::lanes<double>];
        } all;
        for (int lane = 0; lane < simd::lanes<double>; ++lane)
            for (int i = 0; i < 4; ++i)
                all.numbers[lane].x[i] = uint32_t(v.x.x[i][lane]);
        store(all);
    }
    static vec<double> unit(const value_type &v) {
        vec<double> sum = v.x.x[0] * v.inverse.x[0];
        sum += v.x.x[1] * v.inverse.x[1];
        sum += v.x.x[2] * v.inverse.x[2];
        sum += v.x.x[3] * v.inverse.x[3];
        return sum - arithmetic::floor(sum);
    }
    template <class Store>
    static void unit(const value_type &v, double, Store store) {
        store(unit(v));
    }
    template <class Store>
    static void unit(const value_type &v, float, Store store) {
        using ints = typename simd::vec_of<int32_t, simd::vector_bytes / 2>::type;
        using floats = typename simd::vec_of<float, simd::vector_bytes / 2>::type;
        const ints upper = __builtin_convertvector(unit(v) * 0x1p24, ints);
        store(__builtin_convertvector(upper, floats) * 0x1p-24f);
    }
};

template <class Out>
int generate(wh_state &state, index_t n, Out out) {
    const uint32_t *const m =
        vox::rng::wh_member_of(reinterpret_cast<vox::rng::stream *>(&state) - 1).m;
    ring r;
    ring::element x, a;
    for (int i = 0; i < 4; ++i) {
        r.m.x[i] = simd::broadcast(double(m[i]));
        r.inverse.x[i] = simd::broadcast(1.0 / m[i]);
        x.x[i] = state.x[i];
        a.x[i] = state.a[i];
    }
    const int status = congruential(r, x, a, n, out);
    for (int i = 0; i < 4; ++i)
        state.x[i] = uint32_t(x.x[i]);
    return status;
}

} // namespace

VOX_BRNG_KERNELS(wh, wh_state, kind)
