// generator.hpp - a stream with the output routines of its generator, as tests reach them.
#pragma once

#include <gtest/gtest.h>
#include <utility>
#include <vector>

#include "rng/registry.hpp"
#include "vox/rsk.h"

namespace test {

using numbers = std::vector<uint32_t>;

class generator {
  public:
    explicit generator(int id, const numbers &seed = {}) {
        EXPECT_EQ(vox::rng::rskGetBrngProperties(id, &row), 0) << std::hex << id;
        status = rskNewStreamEx(&handle, id, int(seed.size()), seed.data());
    }
    ~generator() {
        if (handle)
            rskDeleteStream(&handle);
    }
    generator(generator &&other)
        : row(other.row), handle(std::exchange(other.handle, nullptr)), status(other.status) {}

    vox::rng::stream *object() const { return reinterpret_cast<vox::rng::stream *>(handle); }
    int words() const { return row.word_size / 4; } // of one integer output

    int fill(uint32_t *r, int n) { return row.integers(object(), n, r); }
    int fill(float *r, int n, float a = 0, float b = 1) {
        return row.singles(object(), n, r, a, b);
    }
    int fill(double *r, int n, double a = 0, double b = 1) {
        return row.doubles(object(), n, r, a, b);
    }
    numbers integers(int n) {
        numbers r(size_t(n * words()));
        EXPECT_EQ(fill(r.data(), n), 0);
        return r;
    }
    std::vector<double> doubles(int n, double a = 0, double b = 1) {
        std::vector<double> r(static_cast<size_t>(n));
        EXPECT_EQ(fill(r.data(), n, a, b), 0);
        return r;
    }
    std::vector<float> singles(int n, float a = 0, float b = 1) {
        std::vector<float> r(static_cast<size_t>(n));
        EXPECT_EQ(fill(r.data(), n, a, b), 0);
        return r;
    }
    int call(int method, int n, const numbers &params) {
        return row.init(method, object(), n, params.data());
    }
    int skip(uint64_t n) { return rskSkipAheadStream(handle, n); }
    int leapfrog(int k, int streams) { return rskLeapfrogStream(handle, k, streams); }

    vox::rng::brng_properties row{};
    rskStream handle = nullptr;
    int status = 0; // of the seeding
};

// Words as the uniforms on [a, b) that are made of them.
inline std::vector<double> as_doubles(const numbers &words, double a, double b) {
    std::vector<double> u;
    for (uint32_t w : words)
        u.push_back(a + (b - a) * (w * 0x1p-32));
    return u;
}
inline std::vector<float> as_floats(const numbers &words, float a, float b) {
    std::vector<float> u;
    for (uint32_t w : words) {
        const float product = (b - a) * (float(w >> 8) * 0x1p-24f);
        u.push_back(a + product);
    }
    return u;
}

} // namespace test
