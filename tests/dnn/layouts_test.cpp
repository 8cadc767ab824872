// layouts_test.cpp - layouts: sizes, images and comparisons, and what an image may say.
#include <random>

#include "tests/dnn/calls.hpp"
#include "tests/support/failing_memory.hpp"

namespace {

using namespace test;
using vox::dnn::max_dims;

template <class T>
class Layouts : public testing::Test {};
TYPED_TEST_SUITE(Layouts, precisions);

// Records of every kind, four dimensions of distinct sizes and strides.
template <class T>
record of_kind(uint32_t kind) {
    const uint64_t size[] = {8, 9, 10, 11}, stride[] = {1, 8, 72, 720}, block[] = {4, 1, 5, 1};
    const uint64_t strides[] = {300, 1, 600, 0, 5400, 4, 10800, 0};
    record l;
    if (kind == vox::dnn::blocked)
        EXPECT_EQ(::dnn::fill_blocked<T>(&l, 0, 4, size, block, strides, 3), 0);
    else
        EXPECT_EQ(::dnn::fill_plain<T>(&l, 0, 4, size, stride), 0);
    l.kind = kind;
    if (kind == vox::dnn::orb_data)
        l.border1 = 1, l.border2 = 2;
    else if (kind != vox::dnn::plain && kind != vox::dnn::blocked) {
        std::memcpy(l.block, block, sizeof block);
        std::memcpy(l.blocked_stride, strides, sizeof strides);
    }
    return l;
}

TYPED_TEST(Layouts, AreMadeFromOneTo32Dimensions) {
    const sizes n(33, 1);
    void *const untouched = &const_cast<sizes &>(n);
    struct {
        bool out, size, strides;
        size_t dimension;
        int status;
    } const cases[] = {{false, true, true, 33, -1}, {true, false, true, 0, -1},
                       {true, true, false, 4, -1},  {true, true, true, 0, -4},
                       {true, true, true, 33, -4},  {true, true, true, 1, 0},
                       {true, true, true, 32, 0}};
    for (const auto &c : cases) {
        dnnLayout_t out = untouched;
        EXPECT_EQ(api<TypeParam>::LayoutCreate(c.out ? &out : nullptr, c.dimension,
                                               c.size ? n.data() : nullptr,
                                               c.strides ? n.data() : nullptr),
                  c.status);
        EXPECT_EQ(out == untouched, c.status != 0);
        if (c.status == 0) {
            EXPECT_EQ(api<TypeParam>::LayoutDelete(out), 0);
        }
    }
    EXPECT_EQ(api<TypeParam>::LayoutDelete(nullptr), 0);
}

TYPED_TEST(Layouts, HaveTheBytesOfTheirLargestExtent) {
    constexpr uint64_t huge = uint64_t(1) << 40;
    struct {
        sizes size, stride;
        uint64_t elements;
    } const cases[] = {{{5, 4}, {1, 8}, 32}, {{5, 4, 3}, {12, 1, 4}, 60}, // any order
                       {{5, 4}, {1, 0}, 5},  {{5}, {0}, 0},
                       {{7, 0}, {0, 7}, 0},  {{huge, huge}, {1, huge}, 0}}; // more than there is
    for (const auto &c : cases) {
        const owned<TypeParam> l(c.size, c.stride);
        const bool fits = c.size[0] != huge;
        EXPECT_EQ(api<TypeParam>::LayoutGetMemorySize(l),
                  fits ? c.elements * sizeof(TypeParam) : SIZE_MAX);
        void *buffer = &buffer;
        EXPECT_EQ(api<TypeParam>::AllocateBuffer(&buffer, l), fits ? c.elements ? 0 : -1 : -3);
        EXPECT_EQ(buffer == &buffer, !fits || !c.elements);
        if (fits && c.elements) {
            EXPECT_EQ(reinterpret_cast<uintptr_t>(buffer) % 64, 0u);
            std::memset(buffer, 1, c.elements * sizeof(TypeParam));
            EXPECT_EQ(api<TypeParam>::ReleaseBuffer(buffer), 0);
        }
    }
    void *buffer;
    EXPECT_EQ(api<TypeParam>::LayoutGetMemorySize(nullptr), 0u);
    EXPECT_EQ(api<TypeParam>::AllocateBuffer(&buffer, nullptr), -1);
    EXPECT_EQ(api<TypeParam>::AllocateBuffer(nullptr, owned<TypeParam>(sizes{3})), -1);
    EXPECT_EQ(api<TypeParam>::ReleaseBuffer(nullptr), 0);

    const uint64_t s = sizeof(TypeParam);
    EXPECT_EQ(::dnn::memory_bytes(*owned<TypeParam>(of_kind<TypeParam>(1))),
              7920 * s); // stride decides
    EXPECT_EQ(::dnn::span_orb_data(&*owned<TypeParam>(of_kind<TypeParam>(1))), 7920u);
    EXPECT_EQ(::dnn::memory_bytes(*owned<TypeParam>(of_kind<TypeParam>(2))), 7920 * s);
    EXPECT_EQ(::dnn::memory_bytes(*owned<TypeParam>(of_kind<TypeParam>(4))), 11 * 10800 * s);
}

TYPED_TEST(Layouts, AreStoredInTheFormThatIsFixed) {
    record l = of_kind<TypeParam>(4);
    l.flags = 7;
    const owned<TypeParam> of(l);
    image bytes(1341, 0xEE);
    ASSERT_EQ(api<TypeParam>::LayoutSerializationBufferSize(), 1340u);
    ASSERT_EQ(api<TypeParam>::LayoutSerialize(of, bytes.data()), 0);
    EXPECT_EQ(bytes[1340], 0xEE);
    const auto word = [&bytes](size_t offset) {
        uint64_t value;
        std::memcpy(&value, bytes.data() + 4 + offset, 8);
        return value;
    };
    EXPECT_EQ(bytes[0] | bytes[1] << 8 | bytes[2] << 16 | bytes[3] << 24, 1336);
    EXPECT_EQ(word(0), 4u | uint64_t(7) << 32);
    EXPECT_EQ(word(8), 4u);
    EXPECT_EQ(word(16 + 24), 11u);
    EXPECT_EQ(word(528), sizeof(TypeParam));
    EXPECT_EQ(word(552), 6u); // two dimensions in blocks count twice
    EXPECT_EQ(word(560 + 16), 5u);
    EXPECT_EQ(word(816 + 8), 1u);
    EXPECT_EQ(word(816 + 32), 5400u);
    EXPECT_EQ(word(1328), 3u);
    const owned<TypeParam> plain({5, 6}, {70, 80});
    ASSERT_EQ(api<TypeParam>::LayoutSerialize(plain, bytes.data()), 0);
    EXPECT_EQ(word(272 + 8), 80u);

    EXPECT_EQ(api<TypeParam>::LayoutSerialize(nullptr, bytes.data()), -1);
    EXPECT_EQ(api<TypeParam>::LayoutSerialize(of, nullptr), -1);
    dnnLayout_t out = &l;
    EXPECT_EQ(api<TypeParam>::LayoutDeserialize(&out, nullptr), -1);
    EXPECT_EQ(api<TypeParam>::LayoutDeserialize(nullptr, bytes.data()), -1);
    for (const int at : {0, 1, 3, 4 + 0, 4 + 3}) { // the length and the kind
        image bad = bytes;
        bad[size_t(at)] = uint8_t(bad[size_t(at)] ^ 5);
        EXPECT_EQ(api<TypeParam>::LayoutDeserialize(&out, bad.data()), -1) << at;
    }
    EXPECT_EQ(out, &l);
}

TYPED_TEST(Layouts, AreEqualInWhatTheirKindUses) {
    for (uint32_t kind = 0; kind <= 4; ++kind) {
        const record l = of_kind<TypeParam>(kind);
        const owned<TypeParam> same(l);
        EXPECT_EQ(api<TypeParam>::LayoutCompare(same, nullptr), 0);
        EXPECT_EQ(api<TypeParam>::LayoutCompare(nullptr, same), 0);
        for (size_t word = 0; word < sizeof l / 4; ++word) {
            const size_t offset = 4 * word;
            record other = l;
            reinterpret_cast<uint32_t *>(&other)[word] ^= offset == 0 ? 1 : 32;
            if (offset == 0 && other.kind > 4) // which no layout has
                continue;
            const auto among = [=](size_t first, size_t bytes) {
                return offset >= first && offset < first + bytes;
            };
            bool seen = offset == 0 || among(8, 8) || among(16, 32);
            if (kind == 4)
                seen |= among(4, 4) || among(528, 8) || among(560, 32) || among(816, 64) ||
                        among(1328, 8);
            else
                seen |= among(272, 32) || (kind > 0 && among(552, 16));
            const owned<TypeParam> changed(other);
            EXPECT_EQ(api<TypeParam>::LayoutCompare(same, changed), !seen)
                << "kind " << kind << ", byte " << offset;
            EXPECT_EQ(api<TypeParam>::LayoutCompare(changed, changed), 1);
        }
    }
}

TYPED_TEST(Layouts, OfPrimitivesAreNotTheUsers) {
    record l = plain_record<TypeParam>({4}, {1});
    l.flags = 1;
    const owned<TypeParam> of(l);
    void *buffer = &buffer;
    EXPECT_EQ(api<TypeParam>::LayoutDelete(of), -1);
    EXPECT_EQ(api<TypeParam>::AllocateBuffer(&buffer, of), -1);
    EXPECT_EQ(buffer, &buffer);
    EXPECT_EQ(api<TypeParam>::LayoutGetMemorySize(of), 4 * sizeof(TypeParam));
}

TYPED_TEST(Layouts, AreFilledByPrimitives) {
    const uint64_t size[] = {3, 4, 5}, words[] = {1, 2, 3, 4, 5, 6};
    record l;
    EXPECT_EQ(::dnn::fill_plain<TypeParam>(nullptr, 0, 3, size, words), -1);
    EXPECT_EQ(::dnn::fill_plain<TypeParam>(&l, 0, 3, nullptr, words), -1);
    EXPECT_EQ(::dnn::fill_blocked<TypeParam>(nullptr, 0, 3, size, words, words, 0), -1);
    EXPECT_EQ(::dnn::fill_blocked<TypeParam>(&l, 0, 3, nullptr, words, words, 0), -1);
    EXPECT_EQ(::dnn::fill_blocked<TypeParam>(&l, 0, 3, size, nullptr, words, 0), -1);
    EXPECT_EQ(::dnn::fill_blocked<TypeParam>(&l, 0, 3, size, words, nullptr, 0), -1);
    ASSERT_EQ(::dnn::fill_plain<TypeParam>(&l, 9, 3, size, nullptr), 0);
    EXPECT_TRUE(::dnn::is_dense(l));
    EXPECT_EQ(l.flags, 9u);
    ASSERT_EQ(::dnn::fill_blocked<TypeParam>(&l, 0, 3, size, nullptr, nullptr, 6), 0);
    const uint64_t expected[] = {1, 1 * 4, 1 * 4 * 5, 1, 1, 1}; // by the size of the same index
    EXPECT_EQ(std::memcmp(l.blocked_stride, expected, sizeof expected), 0);
    EXPECT_EQ(l.split_dims, 3u);
    EXPECT_EQ(l.block[2], 1u);
    EXPECT_EQ(l.base_offset, 6u);
}

// The n-th element of an image, counted off instead of computed.
TYPED_TEST(Layouts, OfImagesSkipTheBorder) {
    for (const uint64_t groups : {1, 3}) {
        record l = plain_record<TypeParam>({2, 7, 8, 3, groups}, {1, 2, 14, 112, 336});
        l.kind = vox::dnn::orb_data, l.border1 = 1, l.border2 = 2;
        const owned<TypeParam> of(l);
        uint64_t n = 0;
        for (uint64_t g = 0; g < groups; ++g)
            for (uint64_t b = 0; b < 3; ++b)
                for (uint64_t c = 0; c < 2; ++c)
                    for (uint64_t y = 2; y < 6; ++y)
                        for (uint64_t x = 1; x < 6; ++x)
                            EXPECT_EQ((*of).offset(&*of, n++),
                                      c + 2 * x + 14 * y + 112 * b + 336 * g);
        EXPECT_EQ(n, ::dnn::element_count(*of));
    }
}

// Small numbers, so that what fits and what does not are both common.
record any_record(std::mt19937 &random) {
    record l;
    uint64_t words[sizeof l / 8];
    for (uint64_t &word : words)
        word = random() % 8;
    memcpy(&l, words, sizeof l);
    for (uint64_t i = 0; i < max_dims; ++i) {
        l.stride[i] <<= random() % 6;
        l.blocked_stride[i].outer <<= random() % 6;
        l.size[i] = random() % 32 == 0 ? 0 : 1 + l.size[i] % 4;
    }
    l.kind %= 5, l.flags = 0, l.ndims = 1 + l.ndims % 5;
    l.elem_size = sizeof(float);
    if (l.kind == vox::dnn::orb_data)
        l.border1 %= 3, l.border2 %= 3;
    else
        for (uint64_t i = 0; i < max_dims; ++i)
            l.block[i] = random() % 64 == 0 ? 0 : 1 + l.block[i] % 3;
    return l;
}

TEST(HostileLayouts, FitExactlyWhenNoElementLeavesTheBuffer) {
    std::mt19937 random(5);
    int fitting[5] = {}, others[5] = {};
    for (int i = 0; i < 20000; ++i) {
        const owned<float> of(any_record(random));
        const record &l = *of;
        const uint64_t count = ::dnn::element_count(l),
                       elements = ::dnn::memory_bytes(l) / sizeof(float);
        bool inside = l.span(&l) <= elements;
        bool divides = true;
        for (uint64_t d = 0; d < l.ndims; ++d)
            divides &= l.size[d] != 0 && (l.kind < 2 || l.block[d] != 0);
        for (uint64_t n = 0; n < count && divides; ++n)
            inside &= l.offset(&l, n) < elements;
        inside &= divides || count == 0;
        const bool fits = ::dnn::fits<float>(l, count);
        // Few dimensions of an image, and more than it has, are judged by a bound.
        if (fits || l.kind != vox::dnn::orb_data) {
            EXPECT_EQ(fits, inside) << "record " << i << " of kind " << l.kind;
        }
        ++(fits ? fitting : others)[l.kind];
    }
    for (int kind = 0; kind <= 4; ++kind) {
        EXPECT_GT(fitting[kind], 100) << kind;
        EXPECT_GT(others[kind], 100) << kind;
    }
}

TEST(LayoutsMemory, IsAskedForOnceAndReportedWhenThereIsNone) {
    const size_t one = 1;
    image bytes(1340);
    const owned<float> of(sizes{5});
    ASSERT_EQ(dnnLayoutSerialize_F32(of, bytes.data()), 0);
    const int before = allocations();
    void *out = &bytes;
    test::refused_request = test::every_request;
    EXPECT_EQ(dnnLayoutCreate_F32(&out, 1, &one, &one), -3);
    EXPECT_EQ(dnnLayoutDeserialize_F64(&out, bytes.data()), -3);
    EXPECT_EQ(dnnAllocateBuffer_F32(&out, of), -3);
    test::refused_request = 0;
    EXPECT_EQ(out, &bytes);
    EXPECT_EQ(allocations(), before);
}

} // namespace
