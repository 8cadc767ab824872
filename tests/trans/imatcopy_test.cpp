// imatcopy_test.cpp - ?imatcopy: every element, nothing touched that belongs neither to the operand nor to
// the result, with memory and without, on every code path.
#include <algorithm>
#include <gtest/gtest.h>

#include "tests/support/failing_memory.hpp"
#include "tests/trans/matrices.hpp"

namespace {

using namespace test;

template <class T>
class Imatcopy : public ::testing::Test {
  protected:
    ~Imatcopy() override { refused_request = 0; }

    std::string in_place_fault(form f, const copy_call<T> &c, edge where) {
        const layout of_a = c.of_a(), of_b = c.of_b();
        const int64_t n = std::max(of_a.length(), of_b.length());
        const bool exact = vox::real(c.alpha) == 1;
        const std::vector<T> before = exact ? any_bits<T>(n, 1) : numbers<T>(n, 1);
        guarded<T> ab(before, where);
        imatcopy(f, c, ab.data());
        std::vector<T> after(ab.data(), ab.data() + n);
        // What belonged to the operand alone may be anything.
        std::vector<T> rest = before;
        for (int64_t i = 0; i < c.rows; ++i)
            for (int64_t j = 0; j < c.cols; ++j)
                rest[size_t(of_a.at(i, j))] = after[size_t(of_a.at(i, j))];
        return fault(c, before, rest, after.data());
    }
    void expect_right(copy_call<T> c, edge where) {
        for (form f : forms)
            EXPECT_EQ(in_place_fault(f, c, where), "")
                << c << (refused_request ? ", no memory" : "");
    }
    const thread_counts counts;
};
TYPED_TEST_SUITE(Imatcopy, element_types);

TYPED_TEST(Imatcopy, IsRightForAllShapesAndLeadingDimensions) {
    using T = TypeParam;
    lottery lots{7};
    const std::pair<int, int> shapes[] = {{1, 1},   {1, 9},   {9, 1},   {2, 3},    {17, 17},
                                          {32, 65}, {70, 33}, {65, 66}, {150, 97}, {131, 131}};
    for (auto [outer, inner] : shapes)
        for (char trans : {'N', 't', 'c', 'R'})
            for (T alpha : factors<T>())
                for (int same : {0, 1, 2}) {
                    copy_call<T> c{lots.pick({'r', 'C'}), trans, outer, inner, alpha, 0, 1, 0, 1};
                    if (!is_by_rows(c.ordering))
                        std::swap(c.rows, c.cols);
                    const int64_t longest = std::max(outer, inner);
                    c.lda = same == 1 ? longest + 2 : inner + lots.pick({0, 0, 1, 7});
                    c.ldb = same == 1
                                ? c.lda
                                : (is_transposed(trans) ? outer : inner) + lots.pick({0, 0, 2, 9});
                    refused_request = same == 2 ? every_request : 0;
                    vox_free_buffers();
                    this->counts.set(lots.pick({1, 2, 3}));
                    this->expect_right(c, lots.pick({edge::back, edge::front}));
                }
}

// More than goes through a copy: cycles, with marks and without.
TYPED_TEST(Imatcopy, FollowsTheCyclesOfLargeMatrices) {
    using T = TypeParam;
    const int64_t outer = 311, inner = 1100000 / int64_t(sizeof(T)) / 300;
    for (auto [more_a, more_b] : {std::pair(0, 0), {3, 0}, {0, 5}})
        for (bool without : {false, true}) {
            refused_request = without ? every_request : 0;
            vox_free_buffers();
            this->expect_right(
                {'R', 'C', outer, inner, number<T>(2, 0), inner + more_a, 1, outer + more_b, 1},
                edge::back);
        }
}

// Rows that move by less than their length, longer than what is moved at a time.
TYPED_TEST(Imatcopy, RowsMoveOverThemselves) {
    for (auto [lda, ldb] : {std::pair(3000, 3001), {3001, 3000}, {3000, 3700}, {3700, 3000}})
        for (TypeParam alpha : factors<TypeParam>())
            this->expect_right({'R', 'R', 4, 3000, alpha, lda, 1, ldb, 1}, edge::back);
}

TEST(ImatcopyRules, ALeadingDimensionThatIsTooSmallDoesNothing) {
    const std::vector<double> before = random_vector<double>(100, 1);
    for (auto [lda, ldb] : {std::pair(0, 10), {4, 10}, {10, 4}, {-10, 10}, {10, 0}}) {
        std::vector<double> ab = before;
        VOX_Dimatcopy('R', 'T', 5, 5, 2, ab.data(), lda, ldb);
        EXPECT_EQ(ab, before) << lda << ", " << ldb;
    }
}

} // namespace
