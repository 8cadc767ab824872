// conversion_test.cpp - conversions move every element bit by bit to where the layouts say, and touch nothing else.
#include "tests/dnn/tensors.hpp"
#include "tests/support/guarded.hpp"
#include "tests/support/numbers.hpp"
#include "tests/support/thread_counts.hpp"

namespace {

using namespace test;

template <class T>
using bits_of = std::conditional_t<sizeof(T) == 4, uint32_t, uint64_t>;

std::string describe(const record &l) {
    std::string s = "kind " + std::to_string(l.kind);
    for (uint64_t i = 0; i < l.ndims; ++i)
        s += " " + std::to_string(l.size[i]) +
             (l.kind < 2 ? ":" + std::to_string(l.stride[i])
                         : "/" + std::to_string(l.block[i]) + ":" +
                               std::to_string(l.blocked_stride[i].outer) + "," +
                               std::to_string(l.blocked_stride[i].inner));
    if (l.kind == vox::dnn::orb_data)
        s += " borders " + std::to_string(l.border1) + "," + std::to_string(l.border2);
    return s;
}

// What a conversion is to make of the destination.
template <class B>
std::vector<B> expected(const record &from, const std::vector<B> &source, const record &to,
                        std::vector<B> destination) {
    const std::vector<uint64_t> p = places(from), q = places(to);
    const bool listed = from.kind < vox::dnn::blocked && to.kind == vox::dnn::plain;
    if (!listed)
        std::fill(destination.begin(), destination.end(), B());
    for (size_t n = 0; n < q.size(); ++n)
        destination[q[n]] = source[p[n % p.size()]];
    return destination;
}

template <class T>
void expect_exact(const record &from, const record &to, edge where = edge::back) {
    using B = bits_of<T>;
    SCOPED_TRACE(describe(from) + " -> " + describe(to));
    const owned<T> f(from), t(to);
    const primitive_handle<T> c = conversion<T>(f, t);
    ASSERT_TRUE(c);
    random_bits bits(1);
    std::vector<B> source(api<T>::LayoutGetMemorySize(f) / sizeof(T)),
        destination(api<T>::LayoutGetMemorySize(t) / sizeof(T));
    for (B &x : source)
        x = B(bits());
    for (B &x : destination)
        x = B(bits());
    guarded<B> a(source, where), b(destination, where);
    a.freeze();
    ASSERT_EQ(api<T>::ConversionExecute(c.get(), a.data(), b.data()), DNN_STATUS_OK);
    const std::vector<B> want = expected(from, source, to, destination);
    for (size_t i = 0; i < want.size(); ++i)
        if (b.data()[i] != want[i])
            FAIL() << "place " << i << " of " << want.size() << ": " << b.data()[i] << " for "
                   << want[i] << " after " << destination[i];
}

template <class T>
void expect_exact_both_ways(const record &a, const record &b) {
    expect_exact<T>(a, b);
    expect_exact<T>(b, a, edge::front);
}

template <class T>
class Conversion : public ::testing::Test {};
TYPED_TEST_SUITE(Conversion, precisions);

const image_sizes images[] = {
    {7, 5, 16, 2, 0, 0},   {7, 5, 32, 1, 1, 2},    {56, 9, 64, 2, 1, 1}, {224, 3, 3, 2, 3, 3},
    {5, 4, 13, 3, 1, 0},   {1, 1, 40, 1, 0, 0},    {1, 1, 1, 1, 2, 2},   {33, 1, 5, 2, 0, 1},
    {4, 4, 20, 2, 0, 0},   {3, 17, 1000, 1, 0, 0}, {130, 2, 2, 1, 0, 0}, {1, 300, 1, 2, 1, 0},
    {61, 67, 48, 1, 0, 0}, {2, 2, 8, 70, 0, 0},
};
const sizes image_orders[] = {{0, 1, 2, 3}, {2, 0, 1, 3}, {3, 1, 0, 2}, {2, 3, 1, 0}};

TYPED_TEST(Conversion, OfImagesIsExact) {
    using T = TypeParam;
    for (const image_sizes &s : images) {
        image_sizes more = s;
        more.border1 += 2;
        const record orb = internal_image<T>(s);
        expect_exact_both_ways<T>(orb, internal_image<T>(more));
        const sizes size = {s.width, s.height, s.channels, s.images};
        for (const sizes &order : image_orders) {
            const record user = permuted<T>(size, order);
            expect_exact_both_ways<T>(user, orb);
            for (const uint64_t b : {8, 16}) {
                expect_exact_both_ways<T>(user, image_blocks<T>(size, b));
                expect_exact_both_ways<T>(image_blocks<T>(size, b), orb);
            }
            for (const sizes &other : image_orders)
                expect_exact<T>(user, permuted<T>(size, other));
        }
    }
}

const filter_sizes filters[] = {
    {3, 3, 16, 32, 1}, {1, 1, 64, 48, 1},  {7, 7, 3, 64, 1}, {5, 5, 16, 16, 4},
    {3, 3, 20, 13, 1}, {1, 1, 1, 1, 1},    {2, 3, 5, 1, 3},  {1, 1, 1000, 10, 1},
    {3, 1, 64, 64, 2}, {11, 11, 8, 24, 1},
};

TYPED_TEST(Conversion, OfWeightsIsExact) {
    using T = TypeParam;
    for (const filter_sizes &s : filters) {
        const record fwd = internal_filter<T>(s, true), bwd = internal_filter<T>(s, false);
        expect_exact_both_ways<T>(fwd, bwd);
        sizes size = {s.width, s.height, s.inputs, s.outputs}, order = {0, 1, 2, 3},
              exchanged = {3, 2, 0, 1};
        if (s.groups > 1) {
            size.push_back(s.groups);
            order.push_back(4);
            exchanged.push_back(4);
        }
        for (const record &user : {permuted<T>(size, order), permuted<T>(size, exchanged)}) {
            expect_exact_both_ways<T>(user, fwd);
            expect_exact_both_ways<T>(user, bwd);
            for (const uint64_t b : {8, 16})
                if (s.inputs % b == 0 && s.outputs % b == 0)
                    for (const bool inputs_last : {false, true}) {
                        const record w = weights<T>(size, b, inputs_last);
                        expect_exact_both_ways<T>(user, w);
                        expect_exact<T>(w, weights<T>(size, b, !inputs_last));
                        expect_exact<T>(w, fwd);
                    }
        }
    }
}

// The strides of digits in a random order with random gaps.
sizes random_strides(lottery &lots, const sizes &digit) {
    sizes order(digit.size()), stride(digit.size());
    std::iota(order.begin(), order.end(), 0);
    if (lots.number() % 4)
        for (size_t i = order.size() - 1; i > 0; --i)
            std::swap(order[i], order[lots.number() % (i + 1)]);
    uint64_t step = lots.pick<uint64_t>({1, 1, 1, 2});
    for (const uint64_t d : order) {
        stride[d] = step;
        step = step * digit[d] + lots.pick<uint64_t>({0, 0, 0, 1, 5});
    }
    return stride;
}

sizes random_size(lottery &lots) {
    sizes s(1 + lots.number() % 6);
    for (uint64_t &x : s)
        x = lots.pick<uint64_t>({1, 2, 3, 4, 5, 7, 8, 12, 16, 17});
    while (product(s) > 20000)
        s.pop_back();
    return s;
}

// Kinds 0, 2, 3 and 4, of a size; some with strides that have nothing to do with each other.
template <class T>
record random_layout(lottery &lots, const sizes &size) {
    const bool is_blocked = lots.number() % 2;
    const size_t n = size.size();
    sizes block(n, 1), digit;
    for (size_t i = 0; i < n; ++i) {
        if (is_blocked)
            block[i] = lots.pick<uint64_t>({1, 1, 2, 4, 5, 8, 16});
        digit.insert(digit.end(), {(size[i] + block[i] - 1) / block[i], block[i]});
    }
    sizes stride = random_strides(lots, digit);
    if (lots.number() % 8 == 0)
        stride[lots.number() % (2 * n)] = lots.number() % 7;
    record l = plain_record<T>(size, sizes(n));
    if (is_blocked) {
        l = blocked<T>(size, block, stride, lots.pick<uint64_t>({0, 0, 0, 3}));
        l.kind = lots.pick<uint32_t>({2, 3, 4, 4, 4});
    }
    for (size_t i = 0; i < n; ++i)
        l.stride[i] = stride[is_blocked ? i : 2 * i];
    return l;
}

// An image of any strides, and the size of what it holds.
template <class T>
record random_image(lottery &lots, sizes &elements) {
    sizes s(4 + lots.number() % 2);
    for (uint64_t &x : s)
        x = 1 + lots.number() % 9;
    const uint64_t border1 = lots.number() % 3, border2 = lots.number() % 3;
    s[1] += 2 * border1;
    s[2] += 2 * border2;
    record l = plain_record<T>(s, random_strides(lots, s));
    l.kind = vox::dnn::orb_data;
    l.border1 = border1;
    l.border2 = border2;
    elements = logical_sizes(l);
    return l;
}

// Whether every element lies in the buffer that the library would allocate.
template <class T>
bool lies_inside(const record &l) {
    const std::vector<uint64_t> p = places(l);
    const uint64_t bytes = api<T>::LayoutGetMemorySize(owned<T>(l));
    return p.empty() || (*std::max_element(p.begin(), p.end()) + 1) * sizeof(T) <= bytes;
}

TYPED_TEST(Conversion, BetweenRandomLayoutsIsExact) {
    using T = TypeParam;
    lottery lots(7);
    int converted = 0;
    for (int round = 0; round < 2000; ++round) {
        sizes elements = random_size(lots);
        record from =
            round % 4 == 0 ? random_image<T>(lots, elements) : random_layout<T>(lots, elements);
        // The same elements, the same in fewer dimensions, or others.
        if (round % 8 == 1) {
            elements = {product(elements)};
        } else if (round % 8 == 2 && elements.size() > 1) {
            elements[1] *= elements[0];
            elements.erase(elements.begin());
        } else if (round % 8 == 3) {
            elements.back() += lots.number() % 3;
        }
        record to =
            round % 16 == 5 ? random_image<T>(lots, elements) : random_layout<T>(lots, elements);
        if (lots.number() % 2)
            std::swap(from, to);
        const owned<T> f(from), t(to);
        dnnPrimitive_t c = nullptr;
        const int status = api<T>::ConversionCreate(&c, f, t);
        if (status == DNN_STATUS_OK) {
            api<T>::Delete(c);
            ASSERT_TRUE(lies_inside<T>(from) && lies_inside<T>(to))
                << describe(from) << " -> " << describe(to);
            expect_exact<T>(from, to);
            ++converted;
        } else {
            ASSERT_EQ(status, DNN_STATUS_BAD_ARGUMENT);
            ASSERT_EQ(c, nullptr);
        }
        if (this->HasFatalFailure())
            return;
    }
    EXPECT_GT(converted, 1000);
}

// Larger than the caches, where whole lines go past them, and divided among threads.
TYPED_TEST(Conversion, OfLargeTensorsIsExact) {
    using T = TypeParam;
    const thread_counts counts;
    const uint64_t few = 8 / sizeof(T);
    for (const image_sizes &s : {image_sizes{57, 55, 64, 7 * few, 1, 1},
                                 {223, 225, 3, 10 * few, 3, 3},
                                 {14, 14, 256, 27 * few, 0, 0}}) {
        counts.set(s.border1 == 0 ? 2 : 1);
        const record orb = internal_image<T>(s);
        const sizes size = {s.width, s.height, s.channels, s.images};
        const record nchw = permuted<T>(size, {0, 1, 2, 3}), nhwc = permuted<T>(size, {2, 0, 1, 3});
        expect_exact_both_ways<T>(nchw, orb);
        expect_exact_both_ways<T>(nhwc, orb);
        expect_exact_both_ways<T>(nchw, nhwc);
    }
}

} // namespace
