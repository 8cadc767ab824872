// rules_test.cpp - what makes a call do nothing, what alpha = 0 does, and the names of the family.
#include <cctype>
#include <cmath>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

#include "tests/trans/matrices.hpp"

namespace {

using namespace test;

struct letters {
    char ordering, trans;
};

// 200 x 200 doubles are divided among threads.
TEST(Rules, OtherLettersDoNothing) {
    const thread_counts counts;
    counts.set(3);
    const std::vector<double> a(40000), before(40000, 7.0);
    for (auto [ordering, trans] : {letters{'R', 'x'},
                                   {'C', ' '},
                                   {'R', '\0'},
                                   {'x', 'T'},
                                   {'B', 'N'},
                                   {'N', 'C'},
                                   {'\0', 'R'},
                                   {'r', 'B'}})
        for (int n : {3, 8, 200}) {
            std::vector<double> x = before;
            double *const b = x.data();
            VOX_Domatcopy(ordering, trans, n, n, 2, a.data(), n, b, n);
            VOX_Domatcopy2(ordering, trans, n / 2, n / 2, 2, a.data(), n, 2, b, n, 2);
            VOX_Dimatcopy(ordering, trans, n, n, 2, b, n, n);
            VOX_Domatadd(ordering, trans, 'N', n, n, 2, a.data(), n, 1, a.data(), n, b, n);
            VOX_Domatadd(ordering, 'N', trans, n, n, 2, a.data(), n, 1, a.data(), n, b, n);
            EXPECT_EQ(x, before) << ordering << trans << n;
        }
}

TEST(Rules, SizesOfZeroOrLessTouchNothing) {
    for (auto [m, n] : {std::pair(0, 5), {5, 0}, {0, 0}, {-1, 5}, {5, -3}, {-40, -50}})
        for (char trans : {'N', 'T', 'x'}) {
            VOX_Domatcopy('R', trans, m, n, 2, nullptr, 5, nullptr, 5);
            VOX_Domatcopy2('C', trans, m, n, 2, nullptr, 5, 2, nullptr, 5, 3);
            VOX_Dimatcopy('R', trans, m, n, 2, nullptr, 5, 7);
            VOX_Domatadd('R', trans, trans, m, n, 2, nullptr, 5, 3, nullptr, 5, nullptr, 5);
            const vox_int rows = m, cols = n, ld = 5;
            const float alpha = 2;
            vox_somatcopy("R", &trans, &rows, &cols, &alpha, nullptr, &ld, nullptr, &ld);
        }
}

TEST(Rules, AFactorOfZeroMultipliesInCopiesAndReadsNothingInSums) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (char trans : {'N', 'T'})
        for (int64_t n : {3, 200}) {
            std::vector<double> a(size_t(n * n), -1.0), b(size_t(n * n), nan), x(a.size(), 2.0);
            const std::vector<double> zeros(a.size(), 0.0), twice(a.size(), 4.0);
            a[1] = nan;
            VOX_Domatcopy('R', trans, n, n, 0, a.data(), n, b.data(), n);
            const size_t place = trans == 'N' ? 1 : size_t(n);
            EXPECT_TRUE(std::isnan(b[place]));
            b[place] = 0;
            EXPECT_EQ(b, zeros);
            VOX_Dimatcopy('R', trans, n, n, 0, a.data(), n, n);
            EXPECT_TRUE(std::isnan(a[place]));
            a[place] = 0;
            EXPECT_EQ(a, zeros);
            b.assign(b.size(), nan);
            VOX_Domatadd('R', trans, 'N', n, n, 0, nullptr, n, 2, x.data(), n, b.data(), n);
            EXPECT_EQ(b, twice);
            b.assign(b.size(), nan);
            VOX_Domatadd('R', 'N', trans, n, n, 2, x.data(), n, 0, nullptr, n, b.data(), n);
            EXPECT_EQ(b, twice);
            VOX_Domatadd('R', trans, 'N', n, n, 0, nullptr, n, 0, nullptr, n, b.data(), n);
            EXPECT_EQ(b, zeros);
        }
}

TEST(Rules, ARealFactorOfASumDoesNotMultiplyInfinities) {
    const float inf = std::numeric_limits<float>::infinity();
    const vox_complex_float a[1] = {{inf, 1}}, b[1] = {{2, -3}};
    vox_complex_float c[1];
    VOX_Comatadd('R', 'C', 'N', 1, 1, {1, 0}, a, 1, {1, 0}, b, 1, c, 1);
    EXPECT_EQ(c[0].real, inf);
    EXPECT_EQ(c[0].imag, -4);
}

TEST(Spellings, AreOneRoutine) {
    ASSERT_NE(vox_get_max_threads(), 0); // the library is loaded
    for (char type : {'s', 'd', 'c', 'z'})
        for (const char *routine : {"omatcopy", "omatcopy2", "imatcopy", "omatadd"}) {
            const std::string lower = std::string("vox_") + type + routine;
            std::string upper = lower, of_c = "VOX_";
            for (char &letter : upper)
                letter = char(std::toupper(letter));
            of_c += char(std::toupper(type));
            void *const found = dlsym(RTLD_DEFAULT, lower.c_str());
            EXPECT_TRUE(found) << lower;
            EXPECT_EQ(dlsym(RTLD_DEFAULT, (lower + "_").c_str()), found) << lower;
            EXPECT_EQ(dlsym(RTLD_DEFAULT, upper.c_str()), found) << upper;
            EXPECT_TRUE(dlsym(RTLD_DEFAULT, (of_c + routine).c_str())) << of_c;
        }
}

} // namespace
