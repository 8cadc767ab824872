// calls.hpp - the routines by precision, api<float>::LayoutCreate, and layouts that a test makes as it likes.
#pragma once

#include <cstring>
#include <gtest/gtest.h>
#include <vector>

#include "dnn/entries.hpp"
#include "dnn/primitive.hpp"

namespace test {

template <class T>
struct api;
#define VOX_TEST_CALL(P, T, name, result, parameters, arguments)                                   \
    static constexpr auto name = dnn##name##_##P;
#define VOX_TEST_CALLS(P, T)                                                                       \
    template <>                                                                                    \
    struct api<T> {                                                                                \
        VOX_DNN_ENTRIES(VOX_TEST_CALL, P, T)                                                       \
    };
VOX_DNN_PRECISIONS(VOX_TEST_CALLS)

using precisions = testing::Types<float, double>;
using record = vox::dnn::layout;
using sizes = std::vector<uint64_t>;
using image = std::vector<unsigned char>;

// Product of the sizes before each dimension.
inline sizes dense_strides(const sizes &size) {
    sizes stride(size.size(), 1);
    for (size_t i = 1; i < size.size(); ++i)
        stride[i] = stride[i - 1] * size[i - 1];
    return stride;
}

template <class T>
record plain_record(const sizes &size, const sizes &stride) {
    record l;
    EXPECT_EQ(::dnn::fill_plain<T>(&l, 0, size.size(), size.data(), stride.data()), 0);
    return l;
}

// What the library makes of a record, as if it came from elsewhere.
template <class T>
dnnLayout_t from_record(const record &l) {
    image bytes(vox::dnn::serialized_bytes);
    std::memcpy(bytes.data(), &vox::dnn::image_size, 4);
    std::memcpy(bytes.data() + 4, &l, sizeof l);
    dnnLayout_t out = nullptr;
    EXPECT_EQ(api<T>::LayoutDeserialize(&out, bytes.data()), 0);
    return out;
}

// A layout that is deleted, whatever its flags.
template <class T>
struct owned {
    explicit owned(const record &l) : handle(from_record<T>(l)) {}
    owned(const sizes &size, const sizes &stride) : owned(plain_record<T>(size, stride)) {}
    explicit owned(const sizes &size) : owned(size, dense_strides(size)) {}
    ~owned() { vox_serv_free(handle); }
    owned(const owned &) = delete;
    owned &operator=(const owned &) = delete;
    operator dnnLayout_t() const { return handle; }
    const record &operator*() const { return *static_cast<const record *>(handle); }

    dnnLayout_t handle;
};

inline int allocations() {
    int count;
    vox_serv_mem_stat(&count);
    return count;
}

} // namespace test
