// level3_test.cpp - the numbers of level 3, on every code path: every routine in every form, on
// shapes around the edges of register blocks and of blocks in depth and width. Large and threaded
// calls: level3_large_test.
#include <gtest/gtest.h>
#include <tuple>

#include "tests/blas/level3_reference.hpp"
#include "tests/support/thread_counts.hpp"

namespace {

using namespace test;

template <class T>
class Level3 : public ::testing::Test {
  protected:
    // One call; everything that is not given is drawn.
    void expect_right(const routine<T> &r, vox_int m, vox_int n, vox_int k, int combination,
                      std::optional<plant> p = {}, std::vector<vox::real_of<T>> scales = {1}) {
        const drawn_call<T> d = draw(r, m, n, k, combination, lots);
        ASSERT_EQ(trial<T>(r, d.a, lots.number(), p, scales).fault(d.call), "") << d;
    }
    int some(const routine<T> &r) { return int(lots.number() % unsigned(combinations(r))); }
    // Around the edges of register blocks.
    vox_int edge() {
        return lots.pick({1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 15, 16,
                          17, 23, 24, 25, 31, 32, 33, 36, 37, 47, 48, 49, 50, 73, 97});
    }
    // A few, and as many as there are in a block of columns or of the depth.
    vox_int few() { return lots.pick({1, 2, 3, 4, 5, 6, 8, 9, 13, 25}); }
    vox_int block() {
        return lots.pick({95,  96,  97,  127, 128, 129, 143, 144, 145, 191, 192, 193, 200,
                          255, 256, 257, 300, 320, 321, 383, 384, 385, 400, 401, 500, 513});
    }
    lottery lots{1};
};
TYPED_TEST_SUITE(Level3, element_types);

TYPED_TEST(Level3, EverySmallCallIsRight) {
    for (const routine<TypeParam> &r : level3_routines<TypeParam>()) {
        const vox_int most = &r == &routine_named<TypeParam>("gemm") ? 9 : 5;
        for (int combination = 0; combination < combinations(r); ++combination)
            for (vox_int m = 0; m <= most; ++m)
                for (vox_int n = 0; n <= most; ++n)
                    for (vox_int k = r.has('K') ? 0 : most; k <= most; ++k)
                        this->expect_right(r, m, n, k, combination);
    }
}

TYPED_TEST(Level3, StaysWithinTheErrorBoundsAndItsOperandsAtTheEdgesOfRegisterBlocks) {
    for (const routine<TypeParam> &r : level3_routines<TypeParam>())
        for (int combination = 0; combination < combinations(r); ++combination)
            for (int repeat = 0; repeat < 384 / combinations(r); ++repeat)
                this->expect_right(r, this->edge(), this->edge(), this->edge(), combination);
}

TYPED_TEST(Level3, StaysWithinTheErrorBoundsAndItsOperandsAtTheEdgesOfBlocks) {
    for (const routine<TypeParam> &r : level3_routines<TypeParam>())
        for (int repeat = 0; repeat < 18; ++repeat) {
            this->expect_right(r, this->block(), this->few(), this->few(), this->some(r));
            this->expect_right(r, this->few(), this->block(), this->few(), this->some(r));
            this->expect_right(r, this->few(), this->few(), this->block(), this->some(r));
        }
}

TYPED_TEST(Level3, CarriesNansAndInfinitiesWhereTheDefinitionDoes) {
    constexpr double inf = std::numeric_limits<double>::infinity();
    for (const routine<TypeParam> &r : level3_routines<TypeParam>())
        for (char operand : {'A', 'B', 'C'})
            for (double value : {std::numeric_limits<double>::quiet_NaN(), inf, -inf})
                for (int repeat = 0; repeat < 24; ++repeat)
                    this->expect_right(r, this->edge(), this->edge(), this->edge(), this->some(r),
                                       plant{operand, value});
}

// The reciprocals of these overflow, or squares of them over- or underflow; the solutions do not.
TYPED_TEST(Level3, SolvesBadlyScaledSystems) {
    using R = vox::real_of<TypeParam>;
    using limits = std::numeric_limits<R>;
    const R tiny = limits::min() * 32, subnormal = limits::min() / 64, huge = limits::max() / 16;
    const routine<TypeParam> &trsm = routine_named<TypeParam>("trsm");
    for (int combination = 0; combination < combinations(trsm); ++combination)
        for (std::vector<R> scales : {std::vector<R>{tiny},
                                      {subnormal},
                                      {huge},
                                      {1, tiny, huge},
                                      {subnormal, 1, 1, huge, tiny}})
            for (int repeat = 0; repeat < 5; ++repeat)
                this->expect_right(trsm, this->edge(), this->edge(), 0, combination, {}, scales);
}

// An operand at an offset, with a leading dimension, as the caller of a reproducible call lays it out.
struct layout {
    int64_t offset, padding;
};

// The bits of a result whose operands, the same each time, lie where it is said.
template <class T>
std::vector<T> bits_of(const routine<T> &r, arguments<T> a, layout at_a, layout at_b, layout at_c) {
    std::vector<T> memory[3];
    unsigned seed = 0;
    for (auto [matrix, ld, at] :
         {std::tuple('A', &a.lda, at_a), {'B', &a.ldb, at_b}, {'C', &a.ldc, at_c}}) {
        if (!r.has(matrix))
            continue;
        const auto [rows, columns] = r.shape(matrix, a);
        *ld = vox_int(rows + at.padding);
        std::vector<T> &m = memory[matrix - 'A'];
        m.resize(size_t(*ld * columns) + 64 + 64 / sizeof(T));
        const size_t aligned = (64 - uintptr_t(m.data()) % 64) % 64 / sizeof(T);
        matrix_of(a, matrix) = m.data() + aligned + at.offset;
        const auto values = random_vector<vox::real_of<T>>(size_t(rows * columns) * 2, ++seed);
        for (int64_t i = 0; i < rows * columns; ++i)
            matrix_of(a, matrix)[i % rows + i / rows * *ld] =
                vox::make<T>(values[size_t(i)] + (i % rows == i / rows ? 4 : 0),
                             values[size_t(i + rows * columns)]);
    }
    r.fortran(a);
    const auto [rows, columns] = r.shape(result_of(r), a);
    std::vector<T> result;
    for (int64_t j = 0; j < columns; ++j)
        for (int64_t i = 0; i < rows; ++i)
            result.push_back(matrix_of(a, result_of(r))[i + j * (r.has('C') ? a.ldc : a.ldb)]);
    return result;
}

TYPED_TEST(Level3, TheSameCallGivesTheSameBitsWhereverItsOperandsLie) {
    using T = TypeParam;
    const thread_counts counts;
    counts.set(2);
    arguments<T> given;
    given.alpha = given.beta = vox::make<T>(vox::real_of<T>(-0.75), vox::real_of<T>(1.3));
    arguments<T> some = given, more = given, most = given, deep = given;
    std::tie(some.m, some.n, some.k, some.transb) = std::tuple(7, 6, 5, 'T');
    std::tie(more.m, more.n, more.k, more.trans) = std::tuple(61, 53, 70, 'T');
    std::tie(most.m, most.n, most.k, most.uplo) = std::tuple(130, 149, 201, 'L');
    std::tie(deep.m, deep.n, deep.k) = std::tuple(9, 8, 3001);
    more.side = 'R';
    for (const char *name : {"gemm", "syrk", "trmm", "trsm"})
        for (const arguments<T> &a : {some, more, most, deep}) {
            const routine<T> &r = routine_named<T>(name);
            const std::vector<T> expected = bits_of(r, a, {0, 0}, {0, 0}, {0, 0});
            const auto expect_same = [&](layout x, layout y, layout z) {
                const std::vector<T> got = bits_of(r, a, x, y, z);
                ASSERT_EQ(std::memcmp(got.data(), expected.data(), got.size() * sizeof(T)), 0)
                    << r.name << ' ' << a.m << " offsets " << x.offset << ' ' << y.offset << ' '
                    << z.offset;
            };
            expect_same({0, 0}, {0, 0}, {0, 0}); // and from run to run
            for (int64_t offset = 0; offset < int64_t(64 / sizeof(T)); ++offset) {
                expect_same({offset, 1}, {0, 0}, {0, 0});
                expect_same({0, 0}, {offset, 3}, {0, 0});
                expect_same({0, 0}, {0, 0}, {offset, 2});
                expect_same({offset, offset}, {3 * offset % 7, 5}, {5 * offset % 8, 11});
            }
        }
}

} // namespace
