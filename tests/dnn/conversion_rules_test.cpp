// conversion_rules_test.cpp - what conversions are made of and answer: statuses, routines, layouts, threads, memory.
#include <thread>

#include "tests/dnn/tensors.hpp"
#include "tests/support/failing_memory.hpp"
#include "tests/support/thread_counts.hpp"

namespace {

using namespace test;

template <class T>
class ConversionRules : public ::testing::Test {};
TYPED_TEST_SUITE(ConversionRules, precisions);

// The status, and whether anything is handed out with it.
template <class T>
int status_of(dnnLayout_t from, dnnLayout_t to) {
    dnnPrimitive_t p = &p;
    const int status = api<T>::ConversionCreate(&p, from, to);
    EXPECT_EQ(p == &p, status != DNN_STATUS_OK);
    EXPECT_EQ(status == DNN_STATUS_OK ? api<T>::Delete(p) : 0, DNN_STATUS_OK);
    return status;
}

const sizes small = {3, 4, 16, 2};

TYPED_TEST(ConversionRules, RefuseWhatDoesNotFit) {
    using T = TypeParam;
    const auto create = [](const record &from, const record &to) {
        return status_of<T>(owned<T>(from), owned<T>(to));
    };
    const record good = permuted<T>(small, {0, 1, 2, 3});
    const owned<T> layout(good);
    dnnPrimitive_t out;
    EXPECT_EQ(api<T>::ConversionCreate(nullptr, layout, layout), -1);
    EXPECT_EQ(api<T>::ConversionCreate(&out, nullptr, layout), -1);
    EXPECT_EQ(api<T>::ConversionCreate(&out, layout, nullptr), -1);
    EXPECT_EQ(create(good, good), 0);

    const auto changed = [&](const record &l, auto change) {
        record other = l;
        change(other);
        return other;
    };
    const record owned_by_primitive = changed(good, [](record &l) { l.flags = 1; });
    EXPECT_EQ(create(owned_by_primitive, good), -127);
    EXPECT_EQ(create(good, owned_by_primitive), -127);
    for (const uint64_t ndims : {uint64_t(0), uint64_t(33), ~uint64_t(0)}) {
        const record none = changed(good, [&](record &l) { l.ndims = ndims; });
        EXPECT_EQ(create(none, good), -1);
        EXPECT_EQ(create(good, none), -1);
    }
    // One kind: as many dimensions, none smaller.
    EXPECT_EQ(create(good, permuted<T>({3, 4, 32}, {0, 1, 2})), -1);
    for (int i = 0; i < 4; ++i) {
        sizes other = small;
        ++other[i];
        EXPECT_EQ(create(good, permuted<T>(other, {0, 1, 2, 3})), 0);
        EXPECT_EQ(create(permuted<T>(other, {0, 1, 2, 3}), good), -1);
    }
    // Of images, without their borders.
    const record narrow = internal_image<T>({5, 6, 8, 1, 0, 0});
    EXPECT_EQ(create(narrow, internal_image<T>({5, 6, 8, 1, 2, 1})), 0);
    EXPECT_EQ(create(internal_image<T>({5, 6, 8, 1, 2, 1}), narrow), 0);
    EXPECT_EQ(create(internal_image<T>({6, 6, 8, 1, 0, 0}), internal_image<T>({5, 6, 8, 1, 1, 0})),
              -1);
    EXPECT_EQ(create(internal_image<T>({5, 7, 8, 1, 0, 0}), internal_image<T>({5, 6, 8, 1, 0, 1})),
              -1);
    // Of two kinds, anything.
    EXPECT_EQ(create(permuted<T>({5}, {0}), narrow), 0);
    EXPECT_EQ(create(narrow, permuted<T>({5}, {0})), 0);

    // Elements beyond the buffer, of another precision, too many, or none to copy from.
    const auto refused = [&](const record &l, auto change) {
        const record bad = changed(l, change);
        EXPECT_EQ(create(bad, good), -1);
        EXPECT_EQ(create(good, bad), -1);
    };
    refused(good, [](record &l) { l.elem_size = 12 - sizeof(T); });
    refused(good, [](record &l) { l.stride[0] = 100; });
    refused(good, [](record &l) { l.size[1] = uint64_t(1) << 63; });
    refused(good, [](record &l) { l.stride[3] = uint64_t(1) << 62; });
    refused(narrow, [](record &l) { l.border1 = 3; });
    refused(narrow, [](record &l) { l.border2 = ~uint64_t(0); });
    refused(narrow, [](record &l) { l.ndims = 3; });
    refused(narrow, [](record &l) { l.ndims = 6; });
    const record blocks = image_blocks<T>(small, 8);
    refused(blocks, [](record &l) { l.block[0] = 0; });
    refused(blocks, [](record &l) { l.base_offset = 1; });
    refused(blocks, [](record &l) { l.blocked_stride[2].inner = 1000; });
    const record empty = changed(good, [](record &l) { l.size[0] = 0; });
    EXPECT_EQ(create(empty, good), -1);
    EXPECT_EQ(create(empty, empty), 0);
    record repeated = good; // as many times as 64 bits hold, in one place
    repeated.size[0] = repeated.size[1] = uint64_t(1) << 40;
    repeated.stride[0] = repeated.stride[1] = 0;
    EXPECT_EQ(create(repeated, blocks), -1);
}

TYPED_TEST(ConversionRules, KeepTheirLayouts) {
    using T = TypeParam;
    const record from = permuted<T>(small, {2, 0, 1, 3}),
                 to = internal_image<T>({3, 4, 16, 2, 1, 1});
    const primitive_handle<T> c = conversion<T>(from, to);
    dnnPrimitive_t const p = c.get();
    ASSERT_TRUE(p);
    for (int resource = -1; resource < DNN_RES_COUNT; ++resource) {
        dnnLayout_t copy = nullptr;
        const int status = api<T>::LayoutCreateFromPrimitive(&copy, p, resource);
        EXPECT_EQ(status, resource == DNN_RES_SRC || resource == DNN_RES_DST ? 0 : -1);
        if (status == 0) {
            EXPECT_TRUE(api<T>::LayoutCompare(copy, owned<T>(resource == DNN_RES_SRC ? from : to)));
        }
        EXPECT_EQ(api<T>::LayoutDelete(copy), 0);
    }
    T buffer[1000] = {};
    void *resources[DNN_RES_COUNT] = {};
    EXPECT_EQ(api<T>::ConversionExecute(nullptr, buffer, buffer), -1);
    EXPECT_EQ(api<T>::ConversionExecute(p, nullptr, buffer), -1);
    EXPECT_EQ(api<T>::ConversionExecute(p, buffer, nullptr), -1);
    resources[DNN_RES_SRC] = buffer;
    EXPECT_EQ(api<T>::Execute(p, resources), -1);
    EXPECT_EQ(api<T>::ExecuteAsync(p, resources), -127);
    EXPECT_EQ(vox::dnn::conversion_kind, static_cast<vox::dnn::primitive *>(p)->kind);
}

TYPED_TEST(ConversionRules, LeaveNothingBehindWithoutMemory) {
    using T = TypeParam;
    const owned<T> layout(permuted<T>(small, {0, 1, 2, 3}));
    ASSERT_EQ(status_of<T>(layout, layout), 0);
    const int before = allocations();
    refused_request = every_request;
    const int status = status_of<T>(layout, layout);
    refused_request = 0;
    EXPECT_EQ(status, -3);
    EXPECT_EQ(allocations(), before);
    const primitive_handle<T> c = conversion<T>(layout, layout);
    std::vector<T> x(product(small), T(1)), y(x.size());
    dnnLayout_t copy = &copy;
    refused_request = every_request; // execution needs none
    const int ran = api<T>::ConversionExecute(c.get(), x.data(), y.data());
    const int got = api<T>::LayoutCreateFromPrimitive(&copy, c.get(), DNN_RES_DST);
    refused_request = 0;
    EXPECT_EQ(ran, 0);
    EXPECT_EQ(x, y);
    EXPECT_EQ(got, -3);
    EXPECT_EQ(copy, &copy);
}

// Every pair that programs and primitives have, and its routine. Generic is for the rest.
TYPED_TEST(ConversionRules, ChooseARoutineForEachPair) {
    using T = TypeParam;
    const sizes image = {6, 5, 32, 2}, weight = {3, 3, 32, 48}, grouped = {3, 3, 32, 16, 2};
    const record nchw = permuted<T>(image, {0, 1, 2, 3}), nhwc = permuted<T>(image, {2, 0, 1, 3});
    const record oihw = permuted<T>(weight, {0, 1, 2, 3}), hwio = permuted<T>(weight, {3, 2, 0, 1});
    const record goihw = permuted<T>(grouped, {0, 1, 2, 3, 4});
    const record data = internal_image<T>({6, 5, 32, 2, 1, 1});
    const filter_sizes f = {3, 3, 32, 48, 1};
    const record fwd = internal_filter<T>(f, true), bwd = internal_filter<T>(f, false);
    record uneven = image_blocks<T>(image, 16);
    uneven.blocked_stride[3].outer += 16;
    const struct {
        record from, to;
        const char *routine;
    } pairs[] = {
        {nchw, nhwc, "Simple_To_Simple"},
        {nchw, data, "Simple_To_OrbData"},
        {nhwc, data, "Simple_To_OrbData"},
        {data, nchw, "OrbData_To_Simple"},
        {data, nhwc, "OrbData_To_Simple"},
        {data, internal_image<T>({6, 5, 32, 2, 0, 0}), "OrbData_To_OrbData"},
        {oihw, fwd, "Simple_To_OrbFilterFwd"},
        {hwio, fwd, "Simple_To_OrbFilterFwd"},
        {oihw, bwd, "Simple_To_OrbFilterBwd"},
        {fwd, oihw, "OrbFilterFwd_To_Simple"},
        {bwd, oihw, "OrbFilterBwd_To_Simple"},
        {fwd, bwd, "OrbFilterFwd_To_OrbFilterBwd"},
        {bwd, fwd, "OrbFilterBwd_To_OrbFilterFwd"},
        {oihw, weights<T>(weight, 8, false), "Simple_To_Weights8i8o"},
        {hwio, weights<T>(weight, 8, false), "Simple_To_Weights8i8o"},
        {goihw, weights<T>(grouped, 8, false), "Simple_To_Weights8i8o"},
        {oihw, weights<T>(weight, 8, true), "Simple_To_Weights8o8i"},
        {oihw, weights<T>(weight, 16, false), "Simple_To_Weights16i16o"},
        {goihw, weights<T>(grouped, 16, true), "Simple_To_Weights16o16i"},
        {weights<T>(weight, 8, false), oihw, "Weights8_To_Simple"},
        {weights<T>(weight, 8, true), oihw, "Weights8_To_Simple"},
        {weights<T>(weight, 16, true), hwio, "Weights16_To_Simple"},
        {nchw, image_blocks<T>(image, 8), "Simple_To_Image8"},
        {nhwc, image_blocks<T>(image, 16), "Simple_To_Image16"},
        {image_blocks<T>(image, 8), nchw, "Image8_To_Simple"},
        {image_blocks<T>(image, 16), nhwc, "Image16_To_Simple"},
        {weights<T>(weight, 8, true), weights<T>(weight, 8, false), "Weights_Exchanged"},
        {weights<T>(weight, 16, false), weights<T>(weight, 16, true), "Weights_Exchanged"},
        // not quite
        {weights<T>(weight, 8, true), weights<T>(weight, 16, false), "Generic"},
        {weights<T>(weight, 8, true), weights<T>(weight, 8, true), "Generic"},
        {image_blocks<T>(image, 4), nchw, "Generic"},
        {nchw, uneven, "Generic"},
        {permuted<T>({5, 6, 32, 2}, {0, 1, 2, 3}), image_blocks<T>(image, 8), "Generic"},
        {data, image_blocks<T>(image, 8), "Generic"},
        {fwd, weights<T>(weight, 8, false), "Generic"},
        {data, fwd, "Generic"},
    };
    for (const auto &pair : pairs) {
        const primitive_handle<T> c = conversion<T>(pair.from, pair.to);
        ASSERT_TRUE(c) << pair.routine;
        EXPECT_STREQ(internal<T>::routine(static_cast<vox::dnn::conversion *>(c.get())),
                     pair.routine);
    }
}

// Any number of threads may run one conversion, each of which has a team or not.
TYPED_TEST(ConversionRules, RunAtTheSameTime) {
    using T = TypeParam;
    const thread_counts counts;
    const sizes size = {40, 50, 48, 2};
    const record from = permuted<T>(size, {0, 1, 2, 3}), to = permuted<T>(size, {2, 0, 1, 3});
    const primitive_handle<T> c = conversion<T>(from, to);
    ASSERT_TRUE(c);
    std::vector<T> x(product(size)), want(x.size());
    for (size_t i = 0; i < x.size(); ++i)
        x[i] = T(i);
    const std::vector<uint64_t> q = places(to);
    for (size_t i = 0; i < x.size(); ++i)
        want[q[i]] = x[i];
    std::vector<std::vector<T>> results(4, std::vector<T>(x.size()));
    std::vector<std::thread> callers;
    for (auto &y : results)
        callers.emplace_back([&] {
            counts.set(&y == &results[0] ? 3 : 2);
            for (int i = 0; i < 5; ++i)
                api<T>::ConversionExecute(c.get(), x.data(), y.data());
        });
    for (std::thread &t : callers)
        t.join();
    for (const auto &y : results)
        EXPECT_EQ(y, want);
}

// Groups of channels, strides and gaps, as the documentation draws them.
TYPED_TEST(ConversionRules, InternalLayoutsAreAsDocumented) {
    using T = TypeParam;
    const record whole = internal_image<T>({5, 3, 32, 2, 1, 2});
    const uint64_t g = whole.size[0], row = 7 * g, group = 7 * row;
    EXPECT_TRUE(g == 8 || (g == 16 && sizeof(T) == 4));
    EXPECT_EQ(sizes(whole.size, whole.size + 5), (sizes{g, 7, 7, 32 / g, 2}));
    EXPECT_EQ(sizes(whole.stride, whole.stride + 5), (sizes{1, g, row, group, group * (32 / g)}));
    const record few = internal_image<T>({5, 3, 3, 2, 0, 0});
    EXPECT_EQ(sizes(few.stride, few.stride + 4), (sizes{1, 4, 20, 60}));
    const record some = internal_image<T>({5, 3, 20, 2, 0, 0});
    EXPECT_EQ(some.stride[1], g == 16 ? 32u : 24u);
    record none, fwd = internal_filter<T>({3, 5, 20, 40, 1}, true),
                 bwd = internal_filter<T>({3, 5, 20, 40, 6}, false);
    EXPECT_EQ(fwd.ndims, 4u);
    EXPECT_EQ(api<T>::LayoutGetMemorySize(&fwd), 15 * 20 * (g == 16 ? 48 : 40) * sizeof(T));
    EXPECT_EQ(bwd.ndims, 5u);
    EXPECT_EQ(api<T>::LayoutGetMemorySize(&bwd), 6 * 15 * 40 * (g == 16 ? 32 : 24) * sizeof(T));
    // A stored one is mapped as it was.
    EXPECT_TRUE(api<T>::LayoutCompare(&fwd, owned<T>(fwd)));
    const image_sizes hostile = {uint64_t(1) << 40, 1 << 20, 16, 1 << 10, 0, 0},
                      empty = {5, 0, 8, 1, 1, 1};
    EXPECT_EQ(internal<T>::data(&none, &hostile), -1);
    EXPECT_EQ(internal<T>::data(&none, &empty), -1);
    EXPECT_EQ(internal<T>::data(nullptr, &empty), -1);
}

} // namespace
