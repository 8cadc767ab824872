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
    const auto changed = [](void (*change)(record &)) {
        record l = plain_record<T>({4, 3, 2, 2}, {1, 4, 12, 24});
        change(l);
        return l;
    };
    const struct {
        const char *what;
        void (*change)(record &);
        int status;
    } cases[] = {
        {"good", [](record &) {}, 0},
        {"empty", [](record &l) { l.size[1] = 0; }, 0},
        {"a primitive's own", [](record &l) { l.flags = 1, l.kind = 2; }, -127},
        {"border", [](record &l) { l.kind = 1, l.border1 = 1; }, -1},
        {"another border", [](record &l) { l.kind = 1, l.border2 = 1; }, -1},
        {"image", [](record &l) { l.kind = 1; }, 0},
        {"filter", [](record &l) { l.kind = 2; }, -1},
        {"blocked", [](record &l) { l.kind = 4; }, -1},
        {"other precision", [](record &l) { l.elem_size = 12 - l.elem_size; }, -1},
        {"no dimension", [](record &l) { l.ndims = 0; }, -1},
        {"33 dimensions", [](record &l) { l.ndims = 33; }, -1},
        {"overlapping", [](record &l) { l.stride[1] = l.stride[2] = l.stride[3] = 0; }, -1},
        {"beyond the buffer",
         [](record &l) { l.stride[0] = l.stride[1] = l.stride[2] = 16, l.stride[3] = 1; }, -1},
    };
    const owned<T> good(changed(cases[0].change)), empty(changed(cases[1].change)),
        flags(changed(cases[2].change)), border(changed(cases[3].change));
    const auto expect = [](int status, auto create) {
        dnnPrimitive_t out = &out;
        EXPECT_EQ(create(&out), status);
        EXPECT_EQ(out == &out, status != 0);
        if (status == 0)
            call::Delete(out);
    };
    const int before = allocations();
    const auto expect_of = [&](dnnLayout_t l, int status) {
        expect(status, [&](auto out) { return call::ReLUCreateForward(out, nullptr, l, 1); });
        expect(status, [&](auto out) { return call::ReLUCreateBackward(out, nullptr, l, l, 1); });
        EXPECT_EQ(call::ReLUCreateForward(nullptr, nullptr, l, 1), -1);
        // The gradients' layout comes before the place of the result.
        EXPECT_EQ(call::ReLUCreateBackward(nullptr, nullptr, l, good, 1),
                  status == -127 ? -127 : -1);
    };
    expect_of(nullptr, -1);
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        expect_of(owned<T>(changed(c.change)), c.status);
        EXPECT_EQ(allocations(), before);
    }
    const auto expect_backward = [&](int status, dnnLayout_t data) {
        expect(status,
               [&](auto out) { return call::ReLUCreateBackward(out, nullptr, good, data, 1); });
    };
    expect_backward(-1, nullptr);
    expect_backward(-127, flags);
    expect_backward(-1, empty); // nothing to read
    expect_backward(-1, border);
    test::refused_request = test::every_request;
    expect(-3, [&](auto out) { return call::ReLUCreateForward(out, nullptr, good, 1); });
    expect_backward(-3, good);
    test::refused_request = 0;
    EXPECT_EQ(allocations(), before);
}

TYPED_TEST(ReLU, AnswersForItsOwnResources) {
    using T = TypeParam;
    const owned<T> data(sizes{6}), diff({6}, {2});
    const operation<T> f(data, T(1)), b(diff, data, T(1));
    T x[12] = {}, y[12] = {};
    for (int type = -1; type < DNN_RES_COUNT; ++type) {
        dnnLayout_t out = &out;
        const bool forward = type == DNN_RES_SRC || type == DNN_RES_DST;
        EXPECT_EQ(api<T>::LayoutCreateFromPrimitive(&out, f.handle, type), forward ? 0 : -1);
        if (forward) {
            EXPECT_EQ(api<T>::LayoutCompare(out, data), 1);
            EXPECT_EQ(api<T>::LayoutDelete(out), 0);
        }
        out = &out;
        const bool gradient = type == DNN_RES_DIFF_SRC || type == DNN_RES_DIFF_DST;
        EXPECT_EQ(api<T>::LayoutCreateFromPrimitive(&out, b.handle, type),
                  gradient || type == DNN_RES_SRC ? 0 : -1);
        if (out != &out) {
            EXPECT_EQ(api<T>::LayoutCompare(out, gradient ? diff : data), 1);
            EXPECT_EQ(api<T>::LayoutDelete(out), 0);
        }
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
