// omatcopy_test.cpp - ?omatcopy and ?omatcopy2: every element, nothing else touched, on every code path.
#include <gtest/gtest.h>
#include <thread>

#include "tests/trans/matrices.hpp"

namespace {

using namespace test;

template <class T>
class Omatcopy : public ::testing::Test {
  protected:
    const thread_counts counts;

    // The call in all orderings and operations, with these factors; the shape is that of A by rows.
    template <class Check>
    void for_each_call(int64_t outer, int64_t inner, const std::vector<T> &alphas,
                       const Check &check) {
        for (char ordering : {'R', 'c'})
            for (char trans : {'N', 't', 'C', 'r'})
                for (T alpha : alphas) {
                    copy_call<T> c{ordering, trans, outer, inner, alpha, 0, 1, 0, 1};
                    if (!is_by_rows(ordering))
                        std::swap(c.rows, c.cols);
                    c.lda = inner;
                    c.ldb = is_transposed(trans) ? outer : inner;
                    check(c);
                }
    }
};
TYPED_TEST_SUITE(Omatcopy, element_types);

// Sizes around those of lanes, vectors, lines and groups of lines, in every combination.
TYPED_TEST(Omatcopy, IsRightAtTheEdgesOfEveryBlock) {
    this->counts.set(1);
    lottery lots{1};
    const int64_t sizes[] = {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 23, 33, 66, 131};
    for (int64_t outer : sizes)
        for (int64_t inner : sizes)
            this->for_each_call(outer, inner, factors<TypeParam>(), [&](copy_call<TypeParam> c) {
                c.lda += lots.pick({0, 0, 1, 5});
                c.ldb += lots.pick({0, 0, 1, 64});
                const edge where = lots.pick({edge::back, edge::front});
                EXPECT_EQ(fault(lots.pick({form::fortran, form::c}), c, where, false), "") << c;
            });
}

TYPED_TEST(Omatcopy, AFactorOfOneKeepsEveryBit) {
    this->counts.set(1);
    for (form f : forms)
        for (auto [outer, inner] : {std::pair(37, 43), {5, 70}, {70, 5}, {1, 129}})
            this->for_each_call(outer, inner, {vox::one<TypeParam>}, [&](copy_call<TypeParam> c) {
                EXPECT_EQ(fault(f, c, edge::back, true), "") << c;
                c.ldb += 3;
                EXPECT_EQ(fault(f, c, edge::front, true), "") << c;
            });
}

TYPED_TEST(Omatcopy, StridesLieBetweenTheElementsOfARow) {
    this->counts.set(1);
    for (form f : forms)
        for (auto [a, b] : {std::pair(2, 1), {1, 3}, {2, 3}})
            for (auto [outer, inner] : {std::pair(1, 1), {3, 50}, {41, 34}})
                this->for_each_call(outer, inner, factors<TypeParam>(),
                                    [&, sa = a, sb = b](copy_call<TypeParam> c) {
                                        c.stridea = sa, c.strideb = sb;
                                        c.lda = c.lda * sa + 1, c.ldb = c.ldb * sb + 2;
                                        EXPECT_EQ(fault(f, c, edge::back, false), "") << c;
                                    });
}

// Elements equal in A are equal in B, wherever they are and however many threads there are.
TYPED_TEST(Omatcopy, TheSameElementGivesTheSameBitsEverywhere) {
    using T = TypeParam;
    const T x = number<T>(0.1, -0.7);
    this->for_each_call(107, 93, factors<T>(), [&](copy_call<T> c) {
        const std::vector<T> a(107 * 93, x);
        std::vector<T> b(107 * 93);
        for (int threads : {1, 2, 3, 5}) {
            this->counts.set(threads);
            omatcopy(form::c, c, a.data(), b.data());
            for (const T &y : b)
                ASSERT_TRUE(same_bits(y, b[0])) << c;
        }
    });
}

// Shapes on both sides of where threads begin, in blocks and in parts.
TYPED_TEST(Omatcopy, ThreadsTakeEveryElementOnce) {
    for (int threads : {2, 3, 4, 8})
        for (auto [outer, inner] : {std::pair(17, 17),
                                    {64, 65},
                                    {128, 64},
                                    {64, 256},
                                    {100, 300},
                                    {17, 1000},
                                    {1000, 18}}) {
            this->counts.set(threads);
            this->for_each_call(
                outer, inner, {number<TypeParam>(2, 3)}, [&](copy_call<TypeParam> c) {
                    c.ldb += 1;
                    EXPECT_EQ(fault(form::c, c, edge::back, false), "") << c << ", " << threads;
                    c.stridea = 2, c.lda *= 2;
                    EXPECT_EQ(fault(form::c, c, edge::back, false), "") << c << ", " << threads;
                });
        }
}

TYPED_TEST(Omatcopy, ManyCallersAtOnceEachGetTheirOwnResult) {
    using T = TypeParam;
    std::vector<std::thread> callers;
    std::vector<std::string> faults(8);
    for (size_t k = 0; k < faults.size(); ++k)
        callers.emplace_back([this, k, &faults] {
            this->counts.set(int(k % 3) + 1);
            const int64_t n = 120 + int64_t(k);
            const copy_call<T> c{'R', 'T', n, 130, number<T>(0.5, 2), 130, 1, n, 1};
            for (int repeat = 0; repeat < 5 && faults[k].empty(); ++repeat)
                faults[k] = fault(form::c, c, edge::back, false);
        });
    for (std::thread &t : callers)
        t.join();
    EXPECT_EQ(faults, std::vector<std::string>(8));
}

} // namespace
