// omatadd_test.cpp - ?omatadd: every element within the documented bound, results over an operand, on every
// code path.
#include <gtest/gtest.h>

#include "tests/trans/matrices.hpp"

namespace {

using namespace test;

template <class T>
class Omatadd : public ::testing::Test {
  protected:
    using R = real_of<T>;
    struct operand {
        char trans;
        T factor;
        layout in;
        std::vector<T> values;

        operand(char t, T f, bool by_rows, int64_t m, int64_t n, int64_t pad, unsigned seed)
            : trans(t),
              factor(f), in{by_rows, is_transposed(t) ? n : m, is_transposed(t) ? m : n, 0} {
            in.ld = layout::shortest(by_rows, in.rows, in.cols) + pad;
            values = numbers<T>(in.length(), seed);
        }
        wide<T> element(int64_t i, int64_t j) const {
            const auto x = widen(values[size_t(is_transposed(trans) ? in.at(j, i) : in.at(i, j))]);
            return is_conjugated(trans) ? conjugate(x) : x;
        }
    };

    std::string sum_fault(const operand &a, const operand &b, const layout &in,
                          const std::vector<T> &before, const T *c) {
        const wide<T> alpha = widen(a.factor), beta = widen(b.factor);
        return fault(in, before, c, [&](int64_t i, int64_t j, const T &got) {
            const wide<T> x = a.element(i, j), y = b.element(i, j);
            const long double bound =
                2 * gamma<R>(3) * (size(alpha) * size(x) + size(beta) * size(y));
            return agrees(got, alpha * x + beta * y, bound);
        });
    }
    const thread_counts counts;
};
TYPED_TEST_SUITE(Omatadd, element_types);

TYPED_TEST(Omatadd, IsRightForAllOperationsAndFactors) {
    using T = TypeParam;
    lottery lots{5};
    for (auto [m, n] : {std::pair(1, 1), {3, 37}, {16, 33}, {40, 5}, {67, 65}, {150, 131}})
        for (char ordering : {'r', 'C'})
            for (char transa : {'n', 'T', 'c', 'R'})
                for (char transb : {'N', 't', 'C', 'r'})
                    for (T alpha : factors<T>()) {
                        const bool by_rows = is_by_rows(ordering);
                        const T beta =
                            lots.pick({T{}, vox::one<T>, number<T>(0.7, 0), number<T>(-2, 3)});
                        const typename TestFixture::operand a(transa, alpha, by_rows, m, n, 2, 1),
                            b(transb, beta, by_rows, m, n, 0, 2);
                        layout in{by_rows, m, n, layout::shortest(by_rows, m, n) + 3};
                        const std::vector<T> before = any_bits<T>(in.length(), 3);
                        const edge where = lots.pick({edge::back, edge::front});
                        guarded<T> x(a.values, where), y(b.values, where), c(before, where);
                        x.freeze();
                        y.freeze();
                        this->counts.set(lots.pick({1, 2, 3}));
                        omatadd(lots.pick({form::c, form::fortran}), ordering, transa, transb, m, n,
                                alpha, x.data(), a.in.ld, beta, y.data(), b.in.ld, c.data(), in.ld);
                        EXPECT_EQ(this->sum_fault(a, b, in, before, c.data()), "")
                            << ordering << transa << transb << ' ' << m << " x " << n;
                    }
}

// The result over an operand that is not transposed, the other one transposed or not.
TYPED_TEST(Omatadd, TheResultMayTakeTheOperandsPlace) {
    using T = TypeParam;
    const T some[] = {T{}, vox::one<T>, number<T>(0.7, 0.2)};
    for (auto [m, n] : {std::pair(5, 37), {67, 65}, {150, 131}})
        for (char own : {'N', 'R'})
            for (char other : {'N', 'T', 'C'})
                for (T alpha : some)
                    for (T beta : some)
                        for (bool first : {true, false}) {
                            typename TestFixture::operand a(own, alpha, true, m, n, 1, 1),
                                b(other, beta, true, m, n, 0, 2);
                            const std::vector<T> before = a.values;
                            std::vector<T> c = before;
                            this->counts.set(first ? 1 : 3);
                            if (first)
                                omatadd(form::c, 'R', own, other, m, n, alpha, c.data(), a.in.ld,
                                        beta, b.values.data(), b.in.ld, c.data(), a.in.ld);
                            else
                                omatadd(form::c, 'R', other, own, m, n, beta, b.values.data(),
                                        b.in.ld, alpha, c.data(), a.in.ld, c.data(), a.in.ld);
                            EXPECT_EQ(this->sum_fault(a, b, a.in, before, c.data()), "")
                                << own << other << ' ' << m << " x " << n;
                        }
}

TYPED_TEST(Omatadd, SumsOfTheSameElementsAreTheSameEverywhere) {
    using T = TypeParam;
    const std::vector<T> a(107 * 93, number<T>(0.1, -0.7)), b(107 * 93, number<T>(0.3, 0.11));
    std::vector<T> c(107 * 93);
    for (T alpha : {number<T>(0.7, 0), number<T>(0.7, 0.3)})
        for (char transa : {'N', 'T'})
            for (int threads : {1, 3}) {
                this->counts.set(threads);
                omatadd(form::c, 'R', transa, 'R', 107, 93, alpha, a.data(),
                        transa == 'N' ? 93 : 107, alpha, b.data(), 93, c.data(), 93);
                for (const T &x : c)
                    ASSERT_TRUE(same_bits(x, c[0]));
            }
}

} // namespace
