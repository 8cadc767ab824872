// generator.hpp - a stream with the output routines of its generator, as tests reach them.
#pragma once

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "rng/registry.hpp"
#include "vox/rsk.h"

namespace test {

using numbers = std::vector<uint32_t>;

inline vox::rng::brng_properties properties_of(int id) {
    vox::rng::brng_properties row{};
    EXPECT_EQ(vox::rng::rskGetBrngProperties(id, &row), 0) << std::hex << id;
    return row;
}

// The identifier of a generator, or of the first member of a family.
inline int id_of(const std::string &name) {
#define IS_IT(row, NAME, ...)                                                                      \
    if (name == #NAME)                                                                             \
        return (row + 1) << 20;
    VOX_BRNGS(IS_IT)
#undef IS_IT
    ADD_FAILURE() << name;
    return -1;
}

// Deleted at the end. Without arguments, no stream yet.
class generator {
    rskStream stream_ = nullptr;

  public:
    int status = 0; // of the seeding

    generator() = default;
    explicit generator(int id, const numbers &seed = {})
        : status(rskNewStreamEx(&stream_, id, int(seed.size()), seed.data())) {}
    generator(generator &&other)
        : stream_(std::exchange(other.stream_, nullptr)), status(other.status) {}
    ~generator() {
        if (stream_)
            rskDeleteStream(&stream_);
    }

    operator rskStream() const { return stream_; }
    rskStream *operator&() { return &stream_; }
    vox::rng::stream &object() const { return *reinterpret_cast<vox::rng::stream *>(stream_); }
    vox::rng::brng_properties row() const { return properties_of(rskGetStreamStateBrng(stream_)); }
    int words() const { return row().word_size / 4; } // of one integer output

    int fill(uint32_t *r, int n) { return row().integers(&object(), n, r); }
    int fill(float *r, int n, float a = 0, float b = 1) {
        return row().singles(&object(), n, r, a, b);
    }
    int fill(double *r, int n, double a = 0, double b = 1) {
        return row().doubles(&object(), n, r, a, b);
    }
    numbers integers(int n) {
        numbers r(size_t(n * words()));
        EXPECT_EQ(fill(r.data(), n), 0);
        return r;
    }
    template <class T>
    std::vector<T> uniforms(int n, T a = 0, T b = 1) {
        std::vector<T> r(static_cast<size_t>(n));
        EXPECT_EQ(fill(r.data(), n, a, b), 0);
        return r;
    }
    int call(int method, int n = 0, const numbers &params = {}) {
        return row().init(method, &object(), n, params.data());
    }
    int skip(uint64_t n) { return rskSkipAheadStream(stream_, n); }
    int leapfrog(int k, int streams) { return rskLeapfrogStream(stream_, k, streams); }
};

} // namespace test
