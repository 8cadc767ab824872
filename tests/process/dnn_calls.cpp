// dnn_calls.cpp - primitives that were made before: what runs again and again is their execution.
#include <memory>

#include "tests/dnn/calls.hpp"
#include "tests/process/routine_calls.hpp"

namespace {

using namespace test;

using held = std::shared_ptr<void>;

template <class T>
void add(routine_calls &all, call_size size) {
    using call = api<T>;
    const bool small = size == call_size::small;
    const size_t width = small ? 9 : 501, height = small ? 3 : 211;
    const char *const suffix = sizeof(T) == 4 ? "_F32" : "_F64";
    const auto row = [&](const char *name, const sizes &strides) {
        const owned<T> layout({width, height}, strides);
        dnnPrimitive_t f = nullptr, b = nullptr;
        EXPECT_EQ(call::ReLUCreateForward(&f, nullptr, layout, T(0.1)), DNN_STATUS_OK);
        EXPECT_EQ(call::ReLUCreateBackward(&b, nullptr, layout, layout, T(0.1)), DNN_STATUS_OK);
        const held forward(f, call::Delete), backward(b, call::Delete);
        const auto make = [=](char *const *at) {
            void *resources[DNN_RES_COUNT] = {at[0], at[1]};
            call::Execute(forward.get(), resources);
            resources[DNN_RES_DIFF_DST] = at[2], resources[DNN_RES_DIFF_SRC] = at[3];
            call::Execute(backward.get(), resources);
        };
        all.push_back(
            {std::string(name) + suffix, numbers_operands<T>(4, strides[1] * height), make});
    };
    row("ReLU", {1, width});
    row("ReLU'", {1, width + 3});
    row("ReLU''", {2, 2 * width});

    const owned<T> planes({width, height, 6}, {1, width, width * height}),
        pixels({width, height, 6}, {6, 6 * width, 1});
    dnnPrimitive_t t = nullptr, b = nullptr;
    EXPECT_EQ(call::ConversionCreate(&t, planes, pixels), DNN_STATUS_OK);
    EXPECT_EQ(call::ConversionCreate(&b, pixels, planes), DNN_STATUS_OK);
    const held there(t, call::Delete), back(b, call::Delete);
    const auto make = [=](char *const *at) {
        call::ConversionExecute(there.get(), at[0], at[1]);
        call::ConversionExecute(back.get(), at[1], at[2]);
    };
    all.push_back(
        {std::string("Conversion") + suffix, numbers_operands<T>(3, width * height * 6), make});
}

} // namespace

void test::add_dnn_calls(routine_calls &all, call_size size) {
    add<float>(all, size);
    add<double>(all, size);
}
