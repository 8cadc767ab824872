// gemm_threads.hpp - how many threads a general product takes: a function of its work, of the code path
// and of what is allowed.
#pragma once

#include "serv/base.hpp"
#include "vox/service.h"

namespace vox {

// What a multiplication of each precision weighs in the rules below.
struct gemm_weights {
    double usual, avx512, avx512_zel;
};
template <class T>
constexpr gemm_weights gemm_weights_of = {};
template <>
inline constexpr gemm_weights gemm_weights_of<float> = {0.03125, 0.015625, 1 / 6.4};
template <>
inline constexpr gemm_weights gemm_weights_of<double> = {0.0625, 0.03125, 1 / 3.2};
template <>
inline constexpr gemm_weights gemm_weights_of<vox_complex_float> = {0.25, 0.125, 8 / 6.4};
template <>
inline constexpr gemm_weights gemm_weights_of<vox_complex_double> = {0.5, 0.25, 8 / 3.2};

// Products of fewer multiplications and additions than this are serial on every path, if they are not
// deep.
template <class T>
constexpr double serial_size =
    3000 / gemm_weights_of<T>.usual < 8000 / gemm_weights_of<T>.avx512_zel
        ? 3000 / gemm_weights_of<T>.usual
        : 8000 / gemm_weights_of<T>.avx512_zel;
template <class T>
inline bool surely_serial(index_t m, index_t n, index_t k) {
    return 2.0 * double(m) * double(n) * double(k) < serial_size<T> && k < 4 * (m > n ? m : n);
}

// The most threads, stepping down from `allowed`, that have `per_thread(t)` work each; at least one.
template <class Worth>
int step_down(int allowed, bool by_one, const Worth &worth) {
    int threads = allowed;
    while (threads > 1 && !worth(threads))
        threads -= by_one ? 1 : threads < 10 ? 2 : threads < 30 ? 4 : 8;
    return threads < 1 ? 1 : threads;
}

// path: as vox_serv_cpu_detect numbers them. allowed() is asked only for products that are large enough.
template <class Allowed>
int gemm_threads(int path, const gemm_weights &weights, index_t m, index_t n, index_t k,
                 const Allowed &allowed) {
    const double size = 2.0 * double(m) * double(n) * double(k);
    if (path == VOX_CPU_AVX512_ZEL) {
        if ((m <= 32 && n <= 60 && k <= 32) || (m <= 128 && n <= 112 && k <= 16))
            return 1;
        const double work = size * weights.avx512_zel;
        const bool deep = k / (m > n ? m : n) >= 4;
        if (work < 8000 && !deep)
            return 1;
        const int most = allowed();
        const int threads = work < 8000 ? 1 : step_down(most, false, [&](double t) {
            return (t - 1) * work > (2500 * t + 3000) * t;
        });
        return threads == 1 && deep && most > 1 ? most : threads;
    }
    const double work = size * (path == VOX_CPU_AVX512 ? weights.avx512 : weights.usual);
    if (work < 3000)
        return 1;
    const int most = allowed();
    if (most <= 4)
        return step_down(most, true, [&](double t) { return (t - 1) * work > 3000 * t; });
    if (work < 5000)
        return 1;
    return step_down(most, false, [&](double t) { return (t - 1) * work > (500 * t + 4000) * t; });
}

} // namespace vox
