// calls.hpp - layouts that a test makes as it likes.
#pragma once

#include <gtest/gtest.h>
#include <vector>

#include "dnn/primitive.hpp"
#include "tests/dnn/api.hpp"

namespace test {

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

// A layout that is deleted, whatever its flags.
template <class T>
struct owned {
    explicit owned(const record &l) { EXPECT_EQ(read<T>(l, &handle), 0); }
    owned(const sizes &size, const sizes &stride) : owned(plain_record<T>(size, stride)) {}
    explicit owned(const sizes &size) : owned(size, dense_strides(size)) {}
    ~owned() { vox_serv_free(handle); }
    owned(const owned &) = delete;
    owned &operator=(const owned &) = delete;
    operator dnnLayout_t() const { return handle; }
    const record &operator*() const { return *static_cast<const record *>(handle); }

    dnnLayout_t handle = nullptr;
};

inline int allocations() {
    int count;
    vox_serv_mem_stat(&count);
    return count;
}

} // namespace test
