// mrg32k3a.cpp - numbers of MRG32K3A, see rng/brng/mrg32k3a.hpp.
//
// Each lane has a piece of the sequence to itself and steps through it; rows of steps are turned into columns, so
// that what is given out is consecutive. Where the lanes begin follows from the state by matrices.
//
// In doubles: a step's two products lie below 2^53, so they and their difference are exact.
#include "rng/brng/mrg32k3a.hpp"

#include "rng/kernels/arithmetic.hpp"

namespace {

using namespace output;
using parameters = vox::rng::mrg32k3a_state;
using jumps = vox::rng::mrg32k3a_jumps;

using row = vec<double>;
constexpr int row_lanes = simd::lanes<double>;
constexpr int rows = 2; // at a time, to hide latencies
constexpr int width = rows * row_lanes;

template <uint32_t M>
struct modulo {
    // The residue of a whole number below 2^53. Rounding errors of the quotient: with one rounding, downwards, a
    // third of 1/M more keeps it from missing a whole number for p from -1403580 M to 1403580 M; otherwise it is
    // taken to the nearest, and a wrong choice between two near ones is as good.
    static row residue(row p) {
        constexpr double m = M, inverse = 1 / m;
        const row modulus = row() + m;
#if defined(__AVX512F__)
        const row quotient = _mm512_fmadd_round_pd(p, row() + inverse, row() + inverse / 3,
                                                   _MM_FROUND_TO_NEG_INF | _MM_FROUND_NO_EXC);
        return arithmetic::multiply_add(-arithmetic::floor(quotient), modulus, p);
#else
        const row quotient = arithmetic::nearest(p * inverse);
        return positive(arithmetic::multiply_add(-quotient, modulus, p));
#endif
    }
    // r + M if r is below 0.
    static row positive(row r) {
#if defined(__AVX512F__) // comparisons would compete with products
        return row(_mm512_maskz_min_epu64(0xFF, __m512i(r), __m512i(r + double(M))));
#else
        return r < 0 ? r + double(M) : r;
#endif
    }
};

using modulo1 = modulo<parameters::m1>;
using modulo2 = modulo<parameters::m2>;

struct state_rows {
    row x[3][rows], y[3][rows];

    // The next number of each lane.
    template <class Store>
    void step(Store store) {
        simd::unroll<rows>([&](auto v) VOX_INLINED {
            const row next_x = modulo1::residue(arithmetic::multiply_add(
                row() - double(parameters::x3), x[0][v], x[1][v] * double(parameters::x2)));
            const row next_y = modulo2::residue(arithmetic::multiply_add(
                row() + double(parameters::y1), y[2][v], y[0][v] * -double(parameters::y3)));
            x[0][v] = x[1][v];
            x[1][v] = x[2][v];
            x[2][v] = next_x;
            y[0][v] = y[1][v];
            y[1][v] = y[2][v];
            y[2][v] = next_y;
            store(v, modulo1::positive(next_x - next_y));
        });
    }
};

inline row load(const float *p) {
#if defined(__AVX512F__) // gcc would convert halves
    return _mm512_maskz_cvtps_pd(0xFF, _mm256_loadu_ps(p));
#else
    return simd::load_as<double>(p);
#endif
}

// The state as many multiples of the distance ahead as the lane's number.
template <class Modulo>
inline void spread(const float (&upper)[3][3][jumps::multiples],
                   const float (&lower)[3][3][jumps::multiples], const uint32_t (&from)[3],
                   row (&to)[3][rows]) {
    for (int v = 0; v < rows; ++v)
        for (int i = 0; i < 3; ++i) {
            const auto sum = [&](const float(&coefficients)[3][jumps::multiples], row start) {
                for (int j = 0; j < 3; ++j)
                    start = arithmetic::multiply_add(load(coefficients[j] + v * row_lanes),
                                                     row() + double(from[j]), start);
                return start;
            };
            const row high = Modulo::residue(sum(upper[i], row()));
            to[i][v] = Modulo::residue(sum(lower[i], high * 0x1p16));
        }
}

// The left (Half 0) or right half of the columns of a square of numbers, each as a row. The square lies in memory,
// so that halves of rows are put together by loads.
template <int Half, class Store>
inline void columns(const row (&z)[row_lanes], Store store) {
    constexpr int first = Half * row_lanes / 2;
#if defined(__AVX__)
    const auto join = [&](int i, int j) {
        const double *const p = reinterpret_cast<const double *>(z) + first;
        const auto a = simd::load<sizeof(row) / 2>(p + i * row_lanes);
        const auto b = simd::load<sizeof(row) / 2>(p + j * row_lanes);
#if defined(__AVX512F__)
        return row(__builtin_shufflevector(a, b, 0, 1, 2, 3, 4, 5, 6, 7));
#else
        return row(__builtin_shufflevector(a, b, 0, 1, 2, 3));
#endif
    };
#endif
#if defined(__AVX512F__)
    const auto even = [](row a, row b) {
        return row(__builtin_shufflevector(a, b, 0, 8, 2, 10, 4, 12, 6, 14));
    };
    const auto odd = [](row a, row b) {
        return row(__builtin_shufflevector(a, b, 1, 9, 3, 11, 5, 13, 7, 15));
    };
    const auto even_pairs = [](row a, row b) {
        return row(__builtin_shufflevector(a, b, 0, 1, 4, 5, 8, 9, 12, 13));
    };
    const auto odd_pairs = [](row a, row b) {
        return row(__builtin_shufflevector(a, b, 2, 3, 6, 7, 10, 11, 14, 15));
    };
    const row a = join(0, 2), b = join(1, 3), c = join(4, 6), d = join(5, 7);
    store(simd::constant<first>(), even_pairs(even(a, b), even(c, d)));
    store(simd::constant<first + 1>(), even_pairs(odd(a, b), odd(c, d)));
    store(simd::constant<first + 2>(), odd_pairs(even(a, b), even(c, d)));
    store(simd::constant<first + 3>(), odd_pairs(odd(a, b), odd(c, d)));
#elif defined(__AVX__)
    const row a = join(0, 2), b = join(1, 3);
    store(simd::constant<first>(), row(__builtin_shufflevector(a, b, 0, 4, 2, 6)));
    store(simd::constant<first + 1>(), row(__builtin_shufflevector(a, b, 1, 5, 3, 7)));
#else
    store(simd::constant<first>(), row{z[0][first], z[1][first]});
#endif
}

// The first `lanes` pieces of Length numbers.
template <int Length, class Out>
inline void give(parameters &state, const jumps &distance, int lanes, Out out) {
    state_rows s;
    spread<modulo1>(distance.upper[0], distance.lower[0], state.x, s.x);
    spread<modulo2>(distance.upper[1], distance.lower[1], state.y, s.y);
    const auto keep = [&](int lane) {
        for (int i = 0; i < 3; ++i) {
            state.x[i] = uint32_t(s.x[i][lane / row_lanes][lane % row_lanes]);
            state.y[i] = uint32_t(s.y[i][lane / row_lanes][lane % row_lanes]);
        }
    };
    if (lanes < width)
        keep(lanes);

    // Squares of numbers, one for each row of the state. Steps to the next ones and output of the last ones take
    // turns, because steps wait for one another.
    using squares = row[rows][row_lanes];
    squares both[2];
    const auto make = [&](squares &z, auto j) VOX_INLINED {
        s.step([&](auto v, row value) VOX_INLINED { z[v][j] = value; });
    };
    const auto put = [&](const squares &z, auto half, int at) VOX_INLINED {
        constexpr int v = half / 2;
        columns<half % 2>(z[v], [&](auto lane, row value) VOX_INLINED {
            if (v * row_lanes + lane < lanes)
                out.at((v * row_lanes + lane) * Length + at).put(value);
        });
    };
    simd::unroll<row_lanes>([&](auto j) VOX_INLINED { make(both[0], j); });
    simd::in_memory(both[0]);
    for (int i = row_lanes; i < Length; i += row_lanes) {
        squares &last = both[i / row_lanes % 2 ^ 1], &next = both[i / row_lanes % 2];
        constexpr int halves = 2 * rows;
        simd::unroll<row_lanes>([&](auto j) VOX_INLINED {
            make(next, j);
            simd::unroll<halves>([&](auto half) VOX_INLINED {
                if constexpr (half * row_lanes / halves == j)
                    put(last, half, i - row_lanes);
            });
        });
        simd::in_memory(next);
    }
    simd::unroll<2 * rows>([&](auto half) VOX_INLINED {
        put(both[Length / row_lanes % 2 ^ 1], half, Length - row_lanes);
    });
    if (lanes == width)
        keep(width - 1);
}

inline double step(parameters &s) {
    const auto residue = [](int64_t p, uint32_t m) {
        const int64_t r = p % int64_t(m);
        return uint32_t(r < 0 ? r + m : r);
    };
    const uint32_t x = residue(int64_t(parameters::x2) * s.x[1] - int64_t(parameters::x3) * s.x[0],
                               parameters::m1);
    const uint32_t y = residue(int64_t(parameters::y1) * s.y[2] - int64_t(parameters::y3) * s.y[0],
                               parameters::m2);
    s = {{s.x[1], s.x[2], x}, {s.y[1], s.y[2], y}};
    return double(x < y ? x - y + parameters::m1 : x - y);
}

struct kind {
    using word_type = uint32_t;
    static constexpr bool unit_apart = true;
    static auto words_of(row z) {
        using integers = typename simd::vec_of<uint64_t, sizeof(row)>::type;
        using half = typename simd::vec_of<uint32_t, sizeof(row) / 2>::type;
        return __builtin_convertvector(integers(z + 0x1p52), half);
    }
    template <class Store>
    static void word(row z, Store store) {
        store(words_of(z));
    }
    template <class Store>
    static void unit(row z, double, Store store) {
        store(z * 2.328306549295728e-10);
    }
    template <class Store>
    static void unit(row z, float, Store store) {
        using ints = typename simd::vec_of<int32_t, sizeof(row) / 2>::type;
        using floats = typename simd::vec_of<float, sizeof(row) / 2>::type;
        store(__builtin_convertvector(ints(words_of(z) >> 8), floats) * 0x1p-24f);
    }
};

template <class Out>
int generate(parameters &state, index_t n, Out out) {
    index_t i = 0;
    for (; n - i >= width * 256; i += width * 256)
        give<256>(state, vox::rng::mrg32k3a_jumps_of_256, width, out.at(i));
    for (; n - i >= width * 32; i += width * 32)
        give<32>(state, vox::rng::mrg32k3a_jumps_of_32, width, out.at(i));
    while (n - i >= 8) {
        const int lanes = n - i < width * 8 ? int(n - i) / 8 : width;
        give<8>(state, vox::rng::mrg32k3a_jumps_of_8, lanes, out.at(i));
        i += lanes * 8;
    }
    for (; i < n; ++i)
        out.at(i).put_first(row() + step(state), 1);
    return vox::rng::ok;
}

} // namespace

VOX_BRNG_KERNELS(mrg32k3a, parameters, kind)
