// r250.cpp - numbers of R250, see rng/brng/r250.hpp.
//
// The ring is laid out in a line, oldest word first, which then grows at its end.
#include "rng/brng/r250.hpp"

#include "rng/kernels/outputs.hpp"

namespace {

using namespace output;
using vox::rng::r250_state;

constexpr int size = r250_state::size, lag = r250_state::lag;

// `count` words from or to the ring, from the place `at` on.
inline void from_ring(uint32_t *to, const uint32_t *ring, int at, int count) {
    const int first = count < size - at ? count : size - at;
    __builtin_memcpy(to, ring + at, size_t(first) * 4);
    __builtin_memcpy(to + first, ring, size_t(count - first) * 4);
}
inline void to_ring(uint32_t *ring, int at, const uint32_t *from, int count) {
    const int first = count < size - at ? count : size - at;
    __builtin_memcpy(ring + at, from, size_t(first) * 4);
    __builtin_memcpy(ring, from + first, size_t(count - first) * 4);
}

template <class Out>
int generate(r250_state &state, index_t n, Out out) {
    constexpr int most = 2048; // words at a time
    uint32_t line[size + most + word_lanes];
    while (n > 0) {
        const int count = n < most ? int(n) : most;
        from_ring(line, state.words, int(state.next), size);
        int i = 0;
        const auto next = [&] {
            const words x = simd::load<integer_bytes>(line + i) ^
                            simd::load<integer_bytes>(line + i + size - lag);
            simd::store(line + size + i, x);
            return x;
        };
        for (; i + word_lanes <= count; i += word_lanes)
            out.put(next());
        if (i < count)
            out.put_first(next(), count - i);
        const int fresh = count < size ? count : size;
        const int skipped = (int(state.next) + count - fresh) % size;
        to_ring(state.words, skipped, line + size + count - fresh, fresh);
        state.next = uint32_t(skipped + fresh) % size;
        n -= count;
    }
    return vox::rng::ok;
}

} // namespace

VOX_BRNG_KERNELS(r250, r250_state, bits32)
