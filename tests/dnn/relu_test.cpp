// relu_test.cpp - ReLU: every value at every place, layouts of all sorts, statuses.
#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <thread>

#include "tests/dnn/calls.hpp"
#include "tests/support/failing_memory.hpp"
#include "tests/support/guarded.hpp"
#include "tests/support/thread_counts.hpp"

namespace {

using namespace test;

template <class T>
class ReLU : public testing::Test {};
TYPED_TEST_SUITE(ReLU, precisions);

template <class T>
uint64_t bits(T x) {
    uint64_t b = 0;
    std::memcpy(&b, &x, sizeof x);
    return x == x ? b : ~uint64_t(0); // any NaN
}

// A primitive, for either direction.
template <class T>
struct operation {
    operation(dnnLayout_t data, T s) : slope(s) {
        EXPECT_EQ(api<T>::ReLUCreateForward(&handle, nullptr, data, s), 0);
    }
    operation(dnnLayout_t diff, dnnLayout_t data, T s) : slope(s) {
        EXPECT_EQ(api<T>::ReLUCreateBackward(&handle, nullptr, diff, data, s), 0);
    }
    ~operation() { EXPECT_EQ(api<T>::Delete(handle), 0); }

    void forward(const T *x, T *y) const {
        void *r[DNN_RES_COUNT] = {const_cast<T *>(x), y};
        EXPECT_EQ(api<T>::Execute(handle, r), 0);
    }
    void backward(const T *x, const T *dy, T *dx) const {
        void *r[DNN_RES_COUNT] = {const_cast<T *>(x)};
        r[DNN_RES_DIFF_DST] = const_cast<T *>(dy), r[DNN_RES_DIFF_SRC] = dx;
        EXPECT_EQ(api<T>::Execute(handle, r), 0);
    }
    T expected(T x) const { return x * (x > 0 ? T(1) : slope); }
    T expected(T x, T dy) const { return x > 0 ? dy : slope * dy; }

    dnnPrimitive_t handle = nullptr;
    T slope;
};

template <class T>
std::vector<T> values(size_t n, size_t shift = 0) {
    using limits = std::numeric_limits<T>;
    const T some[] = {1,
                      T(-1.5),
                      0,
                      T(-0.0),
                      limits::quiet_NaN(),
                      T(3),
                      -T(7),
                      T(2),
                      limits::infinity(),
                      -limits::infinity(),
                      limits::denorm_min(),
                      -limits::denorm_min(),
                      limits::max()};
    std::vector<T> v(n);
    for (size_t i = 0; i < n; ++i)
        v[i] = some[(i + shift) * 7 % std::size(some)];
    return v;
}

// Lengths around vectors and their unrolled groups, at every distance from an aligned address, beside
// protected pages.
TYPED_TEST(ReLU, FollowsTheRuleAtEveryPlace) {
    using T = TypeParam;
    for (const T slope : {T(0), T(-0.0), T(0.25), T(-2), std::numeric_limits<T>::quiet_NaN()})
        for (size_t n = 1; n < 150; n += n < 40 ? 1 : 13) {
            const owned<T> l(sizes{n});
            const operation<T> f(l, slope), b(l, l, slope);
            for (const edge side : {edge::back, edge::front}) {
                const auto x = values<T>(n, n), dy = values<T>(n, 5);
                guarded<T> source(x, side), gradient(dy, side), y(std::vector<T>(n), side),
                    dx(std::vector<T>(n), side);
                source.freeze(), gradient.freeze();
                f.forward(source.data(), y.data());
                b.backward(source.data(), gradient.data(), dx.data());
                for (size_t i = 0; i < n; ++i) {
                    ASSERT_EQ(bits(y.data()[i]), bits(f.expected(x[i]))) << x[i] << " of " << n;
                    ASSERT_EQ(bits(dx.data()[i]), bits(b.expected(x[i], dy[i]))) << x[i];
                }
            }
        }
}

struct shape {
    const char *name;
    sizes size, stride;
    uint32_t kind;
};
const shape shapes[] = {
    {"dense", {5, 4, 3, 2}, {1, 5, 20, 60}, 0},
    {"padded rows", {5, 4, 3, 2}, {1, 8, 32, 96}, 0},
    {"rows with gaps", {5, 4, 3, 2}, {2, 10, 40, 120}, 0},
    {"channels fastest", {5, 4, 3, 2}, {3, 15, 1, 60}, 0},
    {"channels fastest, padded", {5, 4, 3, 2}, {4, 24, 1, 96}, 0},
    {"reversed", {5, 4, 3, 2}, {24, 6, 2, 1}, 0},
    {"image", {3, 5, 4, 2}, {1, 3, 15, 60}, 1},
    {"image in groups", {3, 5, 4, 1, 2}, {1, 3, 15, 60, 60}, 1},
    {"blocked", {5, 4, 3, 2}, {}, 4},
};

template <class T>
record record_of(const shape &s) {
    record l;
    if (s.kind != vox::dnn::blocked) {
        l = plain_record<T>(s.size, s.stride);
        l.kind = s.kind;
    } else { // channels in blocks of two, one channel's place left over
        const uint64_t block[] = {1, 1, 2, 1}, strides[] = {2, 0, 10, 0, 40, 1, 80, 0};
        EXPECT_EQ(::dnn::fill_blocked<T>(&l, 0, 4, s.size.data(), block, strides, 0), 0);
    }
    return l;
}

// Through the offsets of the layouts, whichever kernel runs; places that are no elements stay as they were.
TYPED_TEST(ReLU, AddressesElementsThroughLayouts) {
    using T = TypeParam;
    for (const shape &d : shapes)
        for (const shape &g : shapes) {
            SCOPED_TRACE(std::string(d.name) + ", gradients " + g.name);
            if (d.kind == vox::dnn::blocked)
                continue;
            const owned<T> data(record_of<T>(d)), diff(record_of<T>(g));
            const uint64_t of_data = ::dnn::memory_bytes(*data) / sizeof(T),
                           of_diff = ::dnn::memory_bytes(*diff) / sizeof(T);
            const auto x = values<T>(of_data), dy = values<T>(of_diff, 3);
            std::vector<T> y(of_data, 77), wanted_y = y, dx(of_diff, 77), wanted_dx = dx;
            const operation<T> f(data, T(0.5)), b(diff, data, T(0.5));
            for (uint64_t n = 0; n < 120; ++n) {
                const uint64_t i = (*data).offset(&*data, n), o = (*diff).offset(&*diff, n);
                wanted_y[i] = f.expected(x[i]);
                wanted_dx[o] = b.expected(x[i], dy[o]);
            }
            f.forward(x.data(), y.data());
            b.backward(x.data(), dy.data(), dx.data());
            const auto same = [](T p, T q) { return bits(p) == bits(q); };
            EXPECT_TRUE(std::equal(y.begin(), y.end(), wanted_y.begin(), same));
            EXPECT_TRUE(std::equal(dx.begin(), dx.end(), wanted_dx.begin(), same));
            y = x; // in place
            f.forward(y.data(), y.data());
            for (uint64_t n = 0; n < 120; ++n) {
                const uint64_t i = (*data).offset(&*data, n);
                ASSERT_TRUE(same(y[i], wanted_y[i]));
            }
        }
}

TYPED_TEST(ReLU, TakesAnyNumberOfDimensions) {
    using T = TypeParam;
    for (size_t dims = 1; dims <= 32; ++dims) {
        sizes size(dims, 1), stride;
        for (size_t i = 0; i < dims; i += 3)
            size[i] = 2;
        stride = dense_strides(size);
        for (uint64_t &s : stride)
            s *= 2;
        const owned<T> dense(size), gaps(size, stride);
        const uint64_t n = ::dnn::element_count(*dense);
        const auto x = values<T>(n);
        std::vector<T> y(n), spread(2 * n, 9), result(2 * n, 9);
        for (uint64_t i = 0; i < n; ++i)
            spread[2 * i] = x[i];
        operation<T>(dense, T(3)).forward(x.data(), y.data());
        operation<T>(gaps, T(3)).forward(spread.data(), result.data());
        for (uint64_t i = 0; i < n; ++i) {
            ASSERT_EQ(bits(result[2 * i]), bits(y[i])) << dims;
            ASSERT_EQ(result[2 * i + 1], 9) << dims;
        }
    }
}

// Results beyond the caches and threads, from addresses of all sorts; many callers of one primitive.
TYPED_TEST(ReLU, IsTheSameForManyElementsAndCallers) {
    using T = TypeParam;
    constexpr size_t n = (size_t(17) << 20) / sizeof(T) + 5, rows = 8, row = 40001;
    const thread_counts threads;
    threads.set(3);
    const owned<T> flat(sizes{n}), padded({row, rows}, {1, row + 7}), one(sizes{1});
    const operation<T> large(flat, T(0.5)), gradients(flat, flat, T(0.5)), some(padded, T(0.5));
    const std::vector<T> x = values<T>(n + 3);
    std::vector<T> y(n + 3);
    for (const size_t shift : {0, 1, 3}) {
        std::fill(y.begin(), y.end(), T(77));
        large.forward(x.data() + 3 - shift, y.data() + shift);
        size_t wrong = 0;
        for (size_t i = 0; i < n; ++i)
            wrong += bits(y[shift + i]) != bits(large.expected(x[3 - shift + i]));
        EXPECT_EQ(wrong, 0u);
        gradients.backward(x.data() + 3 - shift, x.data(), y.data() + shift);
        for (size_t i = 0; i < n; ++i)
            wrong += bits(y[shift + i]) != bits(gradients.expected(x[3 - shift + i], x[i]));
        EXPECT_EQ(wrong, 0u);
    }
    std::vector<std::thread> callers;
    std::atomic<size_t> wrong{0};
    for (int caller = 0; caller < 4; ++caller)
        callers.emplace_back([&] {
            vox_set_num_threads_local(3);
            std::vector<T> result(::dnn::memory_bytes(*padded) / sizeof(T), T(77));
            for (int round = 0; round < 3; ++round)
                some.forward(x.data(), result.data());
            for (size_t i = 0; i < result.size(); ++i) {
                const bool covered = i % (row + 7) < row;
                wrong += bits(result[i]) != bits(covered ? some.expected(x[i]) : T(77));
            }
        });
    for (std::thread &caller : callers)
        caller.join();
    EXPECT_EQ(wrong, 0u);
}

TYPED_TEST(ReLU, AnswersBadArgumentsInOrder) {
    using T = TypeParam;
    using call = api<T>;
    const auto changed = [](auto change) {
        record l = plain_record<T>({4, 3, 2, 2}, {1, 4, 12, 24});
        change(l);
        return l;
    };
    const owned<T> good(changed([](record &) {})),
        flags(changed([](record &l) { l.flags = 1, l.kind = 2; })),
        image(changed([](record &l) { l.kind = 1; })),
        border1(changed([](record &l) { l.kind = 1, l.border1 = 1; })),
        border2(changed([](record &l) { l.kind = 1, l.border2 = 1; })),
        filter(changed([](record &l) { l.kind = 2; })),
        blocked(changed([](record &l) { l.kind = 4; })),
        other_precision(changed([](record &l) { l.elem_size = 12 - l.elem_size; })),
        none(changed([](record &l) { l.ndims = 0; })),
        many(changed([](record &l) { l.ndims = 33; })),
        overlapping(changed([](record &l) { l.stride[1] = l.stride[2] = l.stride[3] = 0; })),
        beyond(changed(
            [](record &l) { l.stride[0] = l.stride[1] = l.stride[2] = 16, l.stride[3] = 1; })),
        empty(changed([](record &l) { l.size[1] = 0; }));
    struct {
        dnnLayout_t layout;
        int status;
    } const cases[] = {{nullptr, -1},         {good, 0},     {flags, -127}, {image, 0},
                       {border1, -1},         {border2, -1}, {filter, -1},  {blocked, -1},
                       {other_precision, -1}, {none, -1},    {many, -1},    {overlapping, -1},
                       {beyond, -1},          {empty, 0}};
    const int before = allocations();
    for (const auto &c : cases) {
        SCOPED_TRACE(&c - cases);
        for (const bool forward : {true, false}) {
            dnnPrimitive_t out = &out;
            EXPECT_EQ(forward ? call::ReLUCreateForward(&out, nullptr, c.layout, 1)
                              : call::ReLUCreateBackward(&out, nullptr, c.layout, c.layout, 1),
                      c.status);
            EXPECT_EQ(out == &out, c.status != 0);
            if (c.status == 0)
                call::Delete(out);
        }
        EXPECT_EQ(call::ReLUCreateForward(nullptr, nullptr, c.layout, 1), -1);
        // The gradients' layout comes before the place of the result.
        EXPECT_EQ(call::ReLUCreateBackward(nullptr, nullptr, c.layout, good, 1),
                  c.layout == flags ? -127 : -1);
        EXPECT_EQ(allocations(), before);
    }
    dnnPrimitive_t out = &out;
    EXPECT_EQ(call::ReLUCreateBackward(&out, nullptr, good, nullptr, 1), -1);
    EXPECT_EQ(call::ReLUCreateBackward(&out, nullptr, good, flags, 1), -127);
    EXPECT_EQ(call::ReLUCreateBackward(&out, nullptr, good, empty, 1), -1); // nothing to read
    EXPECT_EQ(call::ReLUCreateBackward(&out, nullptr, good, border1, 1), -1);
    test::refused_request = test::every_request;
    EXPECT_EQ(call::ReLUCreateForward(&out, nullptr, good, 1), -3);
    EXPECT_EQ(call::ReLUCreateBackward(&out, nullptr, good, good, 1), -3);
    test::refused_request = 0;
    EXPECT_EQ(out, &out);
    EXPECT_EQ(allocations(), before);
}

TYPED_TEST(ReLU, AnswersForItsOwnResources) {
    using T = TypeParam;
    const owned<T> data(sizes{6}), diff({6}, {2});
    const operation<T> f(data, T(1)), b(diff, data, T(1));
    T x[12] = {}, y[12] = {};
    // Null for what a primitive does not have.
    const auto expect = [](const operation<T> &of, int type, const owned<T> *wanted) {
        dnnLayout_t out = &out;
        EXPECT_EQ(api<T>::LayoutCreateFromPrimitive(&out, of.handle, type), wanted ? 0 : -1);
        EXPECT_EQ(out == &out, !wanted);
        if (wanted) {
            EXPECT_EQ(api<T>::LayoutCompare(out, *wanted), 1);
            EXPECT_EQ(api<T>::LayoutDelete(out), 0);
        }
    };
    for (int type = -1; type < DNN_RES_COUNT; ++type) {
        const bool source = type == DNN_RES_SRC,
                   gradient = type == DNN_RES_DIFF_SRC || type == DNN_RES_DIFF_DST;
        expect(f, type, source || type == DNN_RES_DST ? &data : nullptr);
        expect(b, type, gradient ? &diff : source ? &data : nullptr);
    }
    dnnLayout_t out = &out;
    test::refused_request = test::every_request;
    EXPECT_EQ(api<T>::LayoutCreateFromPrimitive(&out, f.handle, 0), -3);
    test::refused_request = 0;
    EXPECT_EQ(out, &out);
    for (const int missing : {DNN_RES_SRC, DNN_RES_DST, DNN_RES_DIFF_DST, DNN_RES_DIFF_SRC}) {
        void *r[DNN_RES_COUNT] = {};
        r[DNN_RES_SRC] = x, r[DNN_RES_DST] = y, r[DNN_RES_DIFF_DST] = x, r[DNN_RES_DIFF_SRC] = y;
        r[missing] = nullptr;
        EXPECT_EQ(api<T>::Execute(f.handle, r), missing <= DNN_RES_DST ? -1 : 0);
        EXPECT_EQ(api<T>::Execute(b.handle, r), missing == DNN_RES_DST ? 0 : -1);
    }
}

} // namespace
