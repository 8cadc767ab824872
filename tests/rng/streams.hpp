// streams.hpp - what tests of streams share: reports, memory that is refused, a generator of the tests' own.
#pragma once

#include <cstring>

#include "rng/chunks.hpp"
#include "tests/rng/generator.hpp"
#include "tests/support/failing_memory.hpp"
#include "vox/service.h"

namespace test {

// Reports through xerbla while it lives, as in "rskDeleteStream 1;".
class reports {
  public:
    reports() {
        text.clear();
        previous_ = vox_serv_set_xerbla([](const char *name, const vox_int *position, int length) {
            text += std::string(name, size_t(length)) + ' ' + std::to_string(*position) + ';';
        });
    }
    ~reports() { vox_serv_set_xerbla(previous_); }
    std::string take() { return std::exchange(text, {}); }

  private:
    static inline std::string text;
    vox_xerbla_handler previous_;
};

// What gives a status may be refused any of its requests for memory, and ends well when it makes no more.
template <class Attempt>
void refuse_in_turn(const Attempt &attempt) {
    for (int request = 1;; ++request) {
        ASSERT_LT(request, 20);
        refused_request = memory_requests + request;
        const int status = attempt();
        const bool used = memory_requests >= refused_request;
        refused_request = 0;
        EXPECT_EQ(status, used ? RSK_ERROR_NO_MEMORY : 0);
        if (!used) {
            EXPECT_GT(request, 1);
            return;
        }
    }
}

// A generator that reads 64 words of a chunk round and round. Seed words: where it starts, and what becomes
// of the chunk. It neither leapfrogs nor skips.
enum chunk_kind : uint32_t { private_chunk, standard_chunk, chunk_of_copies };
struct walker_state {
    uint32_t next, kind;
};
constexpr uint32_t walker_chunk = 7, walker_words = 64;
constexpr vox::rng::chunk_key walker_key{0, 0x1100000};

inline int walker_init(int method, vox::rng::stream *s, int n, const uint32_t *params) {
    using namespace vox::rng;
    walker_state &state = s->state<walker_state>();
    const vox::rng::chunk *table = find_chunk(*s, walker_chunk);
    switch (method) {
    case seed: {
        const uint32_t first = n > 0 ? params[0] : 1;
        state = {first % walker_words, n > 1 ? params[1] : private_chunk};
        auto *data = static_cast<uint32_t *>(new_chunk_data(walker_words * 4));
        if (!data)
            return RSK_ERROR_NO_MEMORY;
        for (uint32_t i = 0; i < walker_words; ++i)
            data[i] = (i + (state.kind == standard_chunk ? 0 : first)) * 2654435761u;
        const chunk_key keys[] = {{}, walker_key, fresh_key(walker_key.second)};
        return add_chunk(*s, walker_chunk, keys[state.kind], data, walker_words * 4);
    }
    case leapfrog:
        return RSK_ERROR_NO_LEAPFROG;
    case skip:
        return RSK_ERROR_NO_SKIPAHEAD;
    case validate:
        return table && table->bytes == walker_words * 4 && state.next < walker_words &&
                       state.kind <= chunk_of_copies
                   ? ok
                   : bad_state;
    default:
        return unknown_method;
    }
}
template <class T>
int walk(vox::rng::stream *s, int n, T *r, T a = 0, T width = 1) {
    walker_state &state = s->state<walker_state>();
    const auto *data = static_cast<uint32_t *>(vox::rng::find_chunk(*s, walker_chunk)->data);
    for (int i = 0; i < n; ++i, state.next = (state.next + 1) % walker_words)
        r[i] = a + width * T(data[state.next]);
    return 0;
}
template <class T>
int walk_between(vox::rng::stream *s, int n, T *r, T a, T b) {
    return walk(s, n, r, a, (b - a) * T(0x1p-32));
}
inline constexpr vox::rng::brng_properties walker_properties = {
    24,
    2,
    1,
    4,
    32,
    walker_init,
    walk_between<float>,
    walk_between<double>,
    [](vox::rng::stream *s, int n, uint32_t *r) { return walk(s, n, r); }};

inline int walker() {
    static const int id = vox::rng::rskRegisterBrng(&walker_properties);
    return id;
}

// A stream of each generator that gives the same numbers whenever it is asked, at some place of its sequence.
inline std::vector<generator> one_of_each() {
    using namespace vox::rng;
    std::vector<generator> all;
    for (uint32_t kind : {private_chunk, standard_chunk, chunk_of_copies})
        all.emplace_back(walker(), numbers{5, kind});
    for (int row = 0; row < built_in_rows; ++row) {
        if (row == NONDETERM || row == IABSTRACT || row == DABSTRACT || row == SABSTRACT)
            continue;
        const int member = row == WH ? 272 : row == MT2203 ? 6023 : 0;
        all.emplace_back((row + 1) << 20 | member, numbers{5});
    }
    for (generator &g : all)
        g.integers(1001);
    return all;
}

} // namespace test
