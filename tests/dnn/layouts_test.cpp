// layouts_test.cpp - layouts: sizes, images, comparisons.
#include <gtest/gtest.h>

#include "dnn/layout.hpp"

TEST(Layouts, HaveTheBytesOfTheirLargestStride) {
    const size_t size[] = {5, 4}, strides[] = {1, 8};
    dnnLayout_t l = nullptr;
    ASSERT_EQ(dnnLayoutCreate_F32(&l, 2, size, strides), DNN_STATUS_OK);
    EXPECT_EQ(dnnLayoutGetMemorySize_F32(l), 128u);
    EXPECT_EQ(dnnLayoutDelete_F32(l), DNN_STATUS_OK);
}
