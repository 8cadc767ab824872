// generator.hpp - a stream with the output routines of its generator.
#pragma once

#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "rng/registry.hpp"
#include "vox/rsk.h"

namespace test {

class generator {
    rskStream stream_ = nullptr;
    vox::rng::brng_properties row_;

  public:
    const int status; // of seeding

    generator(int id, const std::vector<uint32_t> &seeds)
        : status(rskNewStreamEx(&stream_, id, int(seeds.size()), seeds.data())) {
        EXPECT_EQ(vox::rng::rskGetBrngProperties(id, &row_), 0);
    }
    generator(generator &&other) : row_(other.row_), status(other.status) {
        std::swap(stream_, other.stream_);
    }
    ~generator() {
        if (stream_)
            rskDeleteStream(&stream_);
    }

    rskStream handle() const { return stream_; }
    vox::rng::stream *object() const { return reinterpret_cast<vox::rng::stream *>(stream_); }

    int integers(int n, uint32_t *r) { return row_.integers(object(), n, r); }
    std::vector<uint32_t> words(int n) {
        std::vector<uint32_t> r(n);
        EXPECT_EQ(integers(n, r.data()), 0);
        return r;
    }
    std::vector<double> doubles(int n, double a = 0, double b = 1) {
        std::vector<double> r(n);
        EXPECT_EQ(row_.doubles(object(), n, r.data(), a, b), 0);
        return r;
    }
    std::vector<float> floats(int n, float a = 0, float b = 1) {
        std::vector<float> r(n);
        EXPECT_EQ(row_.singles(object(), n, r.data(), a, b), 0);
        return r;
    }
    int call(int method, int n, const std::vector<uint32_t> &params) {
        return row_.init(method, object(), n, params.data());
    }
};

// Words as the uniforms on [a, b) that are made of them.
inline std::vector<double> as_doubles(const std::vector<uint32_t> &words, double a, double b) {
    std::vector<double> u;
    for (uint32_t w : words)
        u.push_back(a + (b - a) * (w * 0x1p-32));
    return u;
}
inline std::vector<float> as_floats(const std::vector<uint32_t> &words, float a, float b) {
    std::vector<float> u;
    for (uint32_t w : words) {
        const float product = (b - a) * (float(w >> 8) * 0x1p-24f);
        u.push_back(a + product);
    }
    return u;
}

} // namespace test
