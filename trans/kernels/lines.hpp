// lines.hpp - stores of whole cache lines past the caches, and when they pay.
#pragma once

#include "trans/kernels/tile.hpp"

namespace {
namespace trans {

// Results of so many bytes leave the last-level cache soon anyway, and a line that is written whole need
// not be read first. Measured with 32 MB of cache, transposes: from 16 MB on 1.5 to 2.5 times as fast as
// through the caches; at 8 MB from 0.9 to 1.6 times, by what else the cache holds; at 4 MB 0.7 times.
constexpr index_t streamed_bytes = 10 * 1024 * 1024;

template <class T>
VOX_INLINE bool streams(index_t outer, index_t inner) {
    return double(outer) * double(inner) * double(sizeof(T)) >= double(streamed_bytes);
}

// Elements between the start of p's line and p, or -1 if elements straddle lines.
template <class T>
VOX_INLINE int place_in_line(const T *p) {
    const int bytes = int(reinterpret_cast<uintptr_t>(p) % 64);
    return bytes % int(sizeof(T)) ? -1 : bytes / int(sizeof(T));
}

// A vector of the path's width to an aligned address.
template <class R>
VOX_INLINE void stream_vector(R *p, vec<R> v) {
#if defined(__AVX512F__)
    _mm512_stream_ps(reinterpret_cast<float *>(p), __m512(v));
#else
    stream(p, v);
#endif
}

// A line from one aligned address to another.
template <class R>
VOX_INLINE void stream_line(R *to, const R *from) {
    constexpr int n = 16 / int(sizeof(R)), w = stream_bytes / int(sizeof(R));
    unroll<4 * n / w>([&](auto l)
                          VOX_INLINED { stream(to + l * w, load<stream_bytes>(from + l * w)); });
}

} // namespace trans
} // namespace
