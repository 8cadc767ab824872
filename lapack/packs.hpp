// packs.hpp - vectors of 16 bytes, which every processor has, for loops over real numbers that are not
// worth a kernel per code path: memory is slower.
#pragma once

#include <emmintrin.h>

#include "serv/base.hpp"

namespace vox::lapack {

template <class R>
struct pack_of;
template <>
struct pack_of<float> {
    using type = __m128;
};
template <>
struct pack_of<double> {
    using type = __m128d;
};
template <class R>
using pack = typename pack_of<R>::type; // + - * and comparisons work as on R
template <class R>
constexpr index_t lanes = 16 / index_t(sizeof(R));

inline __m128 load(const float *p) { return _mm_loadu_ps(p); }
inline __m128d load(const double *p) { return _mm_loadu_pd(p); }
inline void store(float *p, __m128 a) { _mm_storeu_ps(p, a); }
inline void store(double *p, __m128d a) { _mm_storeu_pd(p, a); }
inline __m128 repeated(float x) { return _mm_set1_ps(x); }
inline __m128d repeated(double x) { return _mm_set1_pd(x); }

inline __m128 absolute(__m128 a) { return _mm_andnot_ps(_mm_set1_ps(-0.0f), a); }
inline __m128d absolute(__m128d a) { return _mm_andnot_pd(_mm_set1_pd(-0.0), a); }
inline __m128 root(__m128 a) { return _mm_sqrt_ps(a); }
inline __m128d root(__m128d a) { return _mm_sqrt_pd(a); }
// b where either is NaN
inline __m128 largest(__m128 a, __m128 b) { return _mm_max_ps(a, b); }
inline __m128d largest(__m128d a, __m128d b) { return _mm_max_pd(a, b); }

// Every other lane of a and b together.
inline __m128 even(__m128 a, __m128 b) { return _mm_shuffle_ps(a, b, 0x88); }
inline __m128d even(__m128d a, __m128d b) { return _mm_unpacklo_pd(a, b); }
inline __m128 odd(__m128 a, __m128 b) { return _mm_shuffle_ps(a, b, 0xdd); }
inline __m128d odd(__m128d a, __m128d b) { return _mm_unpackhi_pd(a, b); }

// Lanes that are true, as ones: of a comparison, joined, and whether there is one.
inline __m128 unordered(__m128 a, __m128 b) { return _mm_cmpunord_ps(a, b); }
inline __m128 unordered(__m128d a, __m128d b) { return _mm_castpd_ps(_mm_cmpunord_pd(a, b)); }
inline __m128 outside(__m128 a, __m128 low, __m128 high) {
    return _mm_or_ps(_mm_cmpnge_ps(a, low), _mm_cmpnle_ps(a, high));
}
inline __m128 outside(__m128d a, __m128d low, __m128d high) {
    return _mm_castpd_ps(_mm_or_pd(_mm_cmpnge_pd(a, low), _mm_cmpnle_pd(a, high)));
}
inline __m128 either(__m128 a, __m128 b) { return _mm_or_ps(a, b); }
inline bool any(__m128 a) { return _mm_movemask_ps(a) != 0; }

} // namespace vox::lapack
