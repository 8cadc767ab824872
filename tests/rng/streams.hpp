// streams.hpp - what tests of streams share: streams that are deleted, numbers, reports, a generator of the
// tests' own.
#pragma once

#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "rng/chunks.hpp"
#include "rng/registry.hpp"
#include "vox/rsk.h"
#include "vox/service.h"

namespace test {

class owned_stream {
  public:
    owned_stream() = default;
    explicit owned_stream(int id, const std::vector<uint32_t> &seed = {1}) {
        EXPECT_EQ(rskNewStreamEx(&s, id, int(seed.size()), seed.data()), 0) << std::hex << id;
    }
    owned_stream(owned_stream &&other) : s(std::exchange(other.s, nullptr)) {}
    ~owned_stream() {
        if (s)
            rskDeleteStream(&s);
    }
    operator rskStream() const { return s; }
    rskStream *operator&() { return &s; }
    vox::rng::stream &object() const { return *reinterpret_cast<vox::rng::stream *>(s); }

    rskStream s = nullptr;
};

inline vox::rng::brng_properties properties_of(int id) {
    vox::rng::brng_properties row{};
    EXPECT_EQ(vox::rng::rskGetBrngProperties(id, &row), 0) << std::hex << id;
    return row;
}

// The next n numbers of a stream, and the status of the request.
struct drawn {
    int status;
    std::vector<uint32_t> words;
    bool operator==(const drawn &) const = default;
};
inline drawn draw(rskStream s, int n) {
    const vox::rng::brng_properties row = properties_of(rskGetStreamStateBrng(s));
    drawn d{0, std::vector<uint32_t>(size_t(n * row.word_size / 4))};
    d.status = row.integers(reinterpret_cast<vox::rng::stream *>(s), n, d.words.data());
    return d;
}

// Reports through xerbla while it lives, as in "rskDeleteStream 1;".
class reports {
  public:
    reports() {
        text().clear();
        previous_ = vox_serv_set_xerbla([](const char *name, const vox_int *position, int length) {
            text() += std::string(name, size_t(length)) + ' ' + std::to_string(*position) + ';';
        });
    }
    ~reports() { vox_serv_set_xerbla(previous_); }
    reports(const reports &) = delete;
    reports &operator=(const reports &) = delete;
    std::string take() { return std::exchange(text(), {}); }

  private:
    static std::string &text() {
        static std::string reported;
        return reported;
    }
    vox_xerbla_handler previous_;
};

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
        state = {params[0] % walker_words, n > 1 ? params[1] : private_chunk};
        auto *data = static_cast<uint32_t *>(new_chunk_data(walker_words * 4));
        if (!data)
            return RSK_ERROR_NO_MEMORY;
        for (uint32_t i = 0; i < walker_words; ++i)
            data[i] = (i + (state.kind == standard_chunk ? 0 : params[0])) * 2654435761u;
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
inline constexpr vox::rng::brng_properties walker_properties = {
    24,
    2,
    1,
    4,
    32,
    walker_init,
    [](vox::rng::stream *s, int n, float *r, float a, float b) {
        return walk(s, n, r, a, (b - a) * 0x1p-32f);
    },
    [](vox::rng::stream *s, int n, double *r, double a, double b) {
        return walk(s, n, r, a, (b - a) * 0x1p-32);
    },
    [](vox::rng::stream *s, int n, uint32_t *r) { return walk(s, n, r); }};

inline int walker() {
    static const int id = vox::rng::rskRegisterBrng(&walker_properties);
    return id;
}

// A stream of each generator that gives the same numbers whenever it is asked, at some place of its sequence.
inline std::vector<owned_stream> one_of_each() {
    using namespace vox::rng;
    std::vector<owned_stream> all;
    for (uint32_t kind : {private_chunk, standard_chunk, chunk_of_copies})
        all.emplace_back(walker(), std::vector<uint32_t>{5, kind});
    for (int row = 0; row < built_in_rows; ++row) {
        if (row == NONDETERM || row == IABSTRACT || row == DABSTRACT || row == SABSTRACT)
            continue;
        const int member = row == WH ? 272 : row == MT2203 ? 6023 : 0;
        owned_stream s;
        EXPECT_EQ(rskNewStream(&s, (row + 1) << 20 | member, 5), 0) << row;
        all.push_back(std::move(s));
    }
    for (const owned_stream &s : all)
        EXPECT_EQ(draw(s, 1001).status, 0);
    return all;
}

} // namespace test
