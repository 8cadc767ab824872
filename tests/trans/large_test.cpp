// large_test.cpp - matrices that go past the caches: rows of the result that begin at the same place of a
// cache line, or anywhere; and sizes whose products have more than 31 bits.
#include <gtest/gtest.h>

#include "tests/trans/matrices.hpp"

namespace {

using namespace test;

template <class T>
class LargeOmatcopy : public ::testing::Test {};
TYPED_TEST_SUITE(LargeOmatcopy, element_types);

TYPED_TEST(LargeOmatcopy, IsRightWhereverRowsBegin) {
    using T = TypeParam;
    const thread_counts counts;
    counts.set(1);
    // 11 MB: square, long and short rows, the last block of columns short
    const int64_t elements = 11 * 1024 * 1024 / int64_t(sizeof(T));
    lottery lots{3};
    for (int64_t outer :
         {int64_t(5), int64_t(80), int64_t(131), int64_t(1024), elements / 131, elements / 65})
        for (int64_t pad : {0, 1, 3, 64})
            for (char trans : {'T', lots.pick({'N', 'C', 'R'})}) {
                const int64_t inner = elements / outer + 5;
                const int64_t short_b = trans == 'N' || trans == 'R' ? inner : outer;
                const int64_t ldb = pad == 64 ? (short_b + 63) / 64 * 64 : short_b + pad;
                const copy_call<T> c{
                    'R',         trans, outer, inner, lots.pick({vox::one<T>, number<T>(2, 1)}),
                    inner + pad, 1,     ldb,   1};
                const edge where = lots.pick({edge::back, edge::front});
                EXPECT_EQ(fault(form::c, c, where, false), "") << c;
            }
}

// Of a mapping of many gigabytes the call touches few pages.
TEST(LargeOffsets, AreComputedIn64Bits) {
    const int64_t ld = int64_t(1) << 28, rows = 20;
    const size_t bytes = size_t(rows * ld) * sizeof(float);
    const auto map = [&] {
        void *const all = mmap(nullptr, bytes, PROT_READ | PROT_WRITE,
                               MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        return all == MAP_FAILED ? nullptr : static_cast<float *>(all);
    };
    float *const a = map(), *const b = map();
    ASSERT_TRUE(a && b);
    for (int64_t i = 0; i < rows; ++i)
        for (int64_t j = 0; j < rows; ++j)
            a[i * ld + j] = float(100 * i + j);
    vox_int n = vox_int(rows), wide = vox_int(ld);
    const float one = 1;
    vox_somatcopy_("R", "T", &n, &n, &one, a, &wide, b, &wide);
    for (int64_t i = 0; i < rows; ++i)
        for (int64_t j = 0; j < rows; ++j)
            EXPECT_EQ(b[j * ld + i], a[i * ld + j]);
    vox_simatcopy_("R", "T", &n, &n, &one, b, &wide, &wide);
    EXPECT_EQ(b[19 * ld + 3], 1903);
    munmap(a, bytes);
    munmap(b, bytes);
}

} // namespace
