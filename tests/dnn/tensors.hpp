// tensors.hpp - layouts as tests describe them, and the place of an element by the rules of the documentation.
#pragma once

#include <algorithm>
#include <memory>
#include <numeric>

#include "dnn/conversion.hpp"
#include "dnn/orb_layouts.hpp"
#include "tests/dnn/calls.hpp"

namespace test {

using vox::dnn::filter_sizes;
using vox::dnn::image_sizes;

// The internal layouts of this path, by precision.
template <class T>
struct internal;
#define VOX_TEST_ORB(P, T)                                                                         \
    template <>                                                                                    \
    struct internal<T> {                                                                           \
        static constexpr auto data = vox_dnn_LayoutFillOrbData_##P;                                \
        static constexpr auto filter_fwd = vox_dnn_LayoutFillOrbFilterFwd_##P;                     \
        static constexpr auto filter_bwd = vox_dnn_LayoutFillOrbFilterBwd_##P;                     \
        static constexpr auto routine = vox_dnn_ConversionRoutine_##P;                             \
    };
VOX_DNN_PRECISIONS(VOX_TEST_ORB)

template <class T>
record internal_image(const image_sizes &s) {
    record l;
    EXPECT_EQ(internal<T>::data(&l, &s), DNN_STATUS_OK);
    return l;
}
template <class T>
record internal_filter(const filter_sizes &s, bool forward) {
    record l;
    EXPECT_EQ((forward ? internal<T>::filter_fwd : internal<T>::filter_bwd)(&l, &s), DNN_STATUS_OK);
    return l;
}

inline uint64_t product(const sizes &s) {
    return std::accumulate(s.begin(), s.end(), uint64_t(1), std::multiplies<>());
}

// Dense, with the dimensions in an order, fastest first: {2, 0, 1, 3} is NHWC.
template <class T>
record permuted(const sizes &size, const sizes &order) {
    sizes stride(size.size());
    uint64_t step = 1;
    for (const uint64_t i : order) {
        stride[i] = step;
        step *= size[i];
    }
    return plain_record<T>(size, stride);
}

// Blocks, then outer and inner stride of each dimension.
template <class T>
record blocked(const sizes &size, const sizes &block, const sizes &strides, uint64_t base = 0) {
    record l;
    EXPECT_EQ(
        ::dnn::fill_blocked<T>(&l, 0, size.size(), size.data(), block.data(), strides.data(), base),
        0);
    return l;
}

// Weights in blocks of b inputs and b outputs, the last of them or the first ones innermost.
template <class T>
record weights(const sizes &size, uint64_t b, bool inputs_last) {
    const uint64_t w = b * b, h = w * size[0], i = h * size[1], o = i * (size[2] / b);
    sizes block = {1, 1, b, b}, strides = {w, 1, h, 1, i, b, o, 1};
    if (inputs_last)
        std::swap(strides[5], strides[7]);
    if (size.size() == 5) {
        block.push_back(1);
        strides.insert(strides.end(), {o * (size[3] / b), 1});
    }
    return blocked<T>(size, block, strides);
}

// Images with channels in blocks of b.
template <class T>
record image_blocks(const sizes &size, uint64_t b) {
    const uint64_t h = b * size[0], c = h * size[1], n = c * ((size[2] + b - 1) / b);
    return blocked<T>(size, {1, 1, b, 1}, {b, 1, h, 1, c, 1, n, 1});
}

// The elements of a tensor, in how many of its dimensions' order.
inline sizes logical_sizes(const record &l) {
    sizes s(l.size, l.size + l.ndims);
    if (l.kind != vox::dnn::orb_data)
        return s;
    s[1] -= 2 * l.border1;
    s[2] -= 2 * l.border2;
    sizes in_order = {s[1], s[2], s[0], s[3]};
    if (l.ndims == 5)
        in_order.push_back(s[4]);
    return in_order;
}

// All elements' places, in their order.
inline std::vector<uint64_t> places(const record &l) {
    const sizes s = logical_sizes(l);
    std::vector<uint64_t> at(product(s));
    sizes x(s.size());
    for (uint64_t &place : at) {
        if (l.kind == vox::dnn::orb_data) {
            place = (x[0] + l.border1) * l.stride[1] + (x[1] + l.border2) * l.stride[2] +
                    x[2] * l.stride[0] + x[3] * l.stride[3] +
                    (l.ndims == 5 ? x[4] * l.stride[4] : 0);
        } else if (l.kind == vox::dnn::plain) {
            place = std::inner_product(x.begin(), x.end(), l.stride, uint64_t(0));
        } else {
            place = l.base_offset;
            for (size_t i = 0; i < x.size(); ++i) {
                const auto [outer, inner] = l.blocked_stride[i];
                place += x[i] / l.block[i] * outer + x[i] % l.block[i] * inner;
            }
        }
        for (size_t i = 0; i < x.size() && ++x[i] == s[i]; ++i)
            x[i] = 0;
    }
    return at;
}

// A primitive that is deleted.
template <class T>
struct deleted {
    void operator()(void *p) const { api<T>::Delete(p); }
};
template <class T>
using primitive_handle = std::unique_ptr<void, deleted<T>>;

template <class T>
primitive_handle<T> conversion(dnnLayout_t from, dnnLayout_t to) {
    dnnPrimitive_t p = nullptr;
    EXPECT_EQ(api<T>::ConversionCreate(&p, from, to), DNN_STATUS_OK);
    return primitive_handle<T>(p);
}
template <class T>
primitive_handle<T> conversion(const record &from, const record &to) {
    return conversion<T>(owned<T>(from), owned<T>(to));
}

} // namespace test
