// sparse_test.cpp - level 1 with one vector compressed, against the same on scattered copies.
#include <cmath>
#include <gtest/gtest.h>
#include <numeric>
#include <random>

#include "tests/blas/level1.hpp"

namespace {

using namespace test;

// nz elements in places of a longer vector, in no order. first: 1 in Fortran, 0 in C.
template <class T>
struct problem {
    std::vector<T> x, y;
    std::vector<vox_int> indx;
    vox_int nz;

    problem(vox_int count, vox_int first)
        : x(random_numbers<T>(size_t(count), 1)), y(random_numbers<T>(size_t(2 * count + 3), 2)),
          indx(y.size()), nz(count) {
        std::iota(indx.begin(), indx.end(), first);
        std::mt19937 bits(7);
        for (size_t i = indx.size(); i-- > 1;)
            std::swap(indx[i], indx[bits() % (i + 1)]);
        indx.resize(x.size());
    }
};

template <class T>
class Sparse : public ::testing::Test {};
TYPED_TEST_SUITE(Sparse, element_types);

TYPED_TEST(Sparse, MovesAndUpdatesTheGivenPlacesAlone) {
    using T = TypeParam;
    const T alpha = narrow<T>({0.5L, -0.25L}), none{};
    for (form f : {form::fortran, form::c})
        for (vox_int nz : {0, 1, 3, 4, 7, 8, 31, 200}) {
            const vox_int first = f == form::fortran ? 1 : 0;
            const problem<T> p(nz, first);
            const guarded<vox_int> indx(p.indx, edge::back);
            const guarded<T> x(p.x, edge::back), y(p.y, edge::back);
            std::vector<wide> wide_y;
            for (T element : p.y)
                wide_y.push_back(widen(element));
            const auto expect_y = [&](long double constant) {
                for (size_t i = 0; i < wide_y.size(); ++i)
                    ASSERT_LE(std::abs(widen(y.data()[i]) - wide_y[i]), constant) << i;
            };
            const auto at = [&](size_t i) { return size_t(p.indx[i] - first); };

            gthr(f, nz, y.data(), x.data(), indx.data());
            for (size_t i = 0; i < p.x.size(); ++i)
                EXPECT_EQ(widen(x.data()[i]), widen(p.y[at(i)]));
            expect_y(0);

            gthrz(f, nz, y.data(), x.data(), indx.data());
            for (size_t i = 0; i < p.x.size(); ++i) {
                EXPECT_EQ(widen(x.data()[i]), widen(p.y[at(i)]));
                wide_y[at(i)] = 0;
            }
            expect_y(0);

            sctr(f, nz, p.x.data(), indx.data(), y.data());
            for (size_t i = 0; i < p.x.size(); ++i)
                wide_y[at(i)] = widen(p.x[i]);
            expect_y(0);

            axpyi(f, nz, none, x.data(), indx.data(), y.data());
            expect_y(0);
            axpyi(f, nz, alpha, x.data(), indx.data(), y.data());
            for (size_t i = 0; i < p.x.size(); ++i)
                wide_y[at(i)] += widen(alpha) * widen(x.data()[i]);
            expect_y(std::sqrt(2.0L) * test::gamma<real_of<T>>(3) * 4); // terms are below 4

            if constexpr (!is_complex<T>) {
                const std::vector<T> old_x(x.data(), x.data() + nz);
                wide_y.assign(y.data(), y.data() + p.y.size());
                const T c = T(0.6), sine = T(0.8);
                roti(f, nz, x.data(), indx.data(), y.data(), c, sine);
                const long double bound = 2 * test::gamma<T>(2); // terms are below 2
                for (size_t i = 0; i < old_x.size(); ++i) {
                    const long double a = old_x[i], b = wide_y[at(i)].real();
                    wide_y[at(i)] = c * b - sine * a;
                    EXPECT_LE(std::fabs(x.data()[i] - (c * a + sine * b)), bound);
                }
                expect_y(bound);
            }
        }
}

TYPED_TEST(Sparse, ProductsStayWithinTheirErrorBounds) {
    using T = TypeParam;
    using R = real_of<T>;
    for (form f : {form::fortran, form::c})
        for (vox_int nz : {0, 1, 2, 3, 4, 5, 8, 31, 200}) {
            const vox_int first = f == form::fortran ? 1 : 0;
            const problem<T> p(nz, first);
            wide plain = 0, conjugated = 0;
            long double size = 0;
            for (size_t i = 0; i < p.x.size(); ++i) {
                const wide a = widen(p.x[i]), b = widen(p.y[size_t(p.indx[i] - first)]);
                plain += a * b;
                conjugated += std::conj(a) * b;
                size += std::abs(a * b);
            }
            const long double bound = std::sqrt(2.0L) * test::gamma<R>(nz + 2) * size;
            const auto error = [](T got, wide want) { return std::abs(widen(got) - want); };
            EXPECT_LE(error(doti(f, nz, p.x.data(), p.indx.data(), p.y.data()), plain), bound);
            EXPECT_LE(error(dotci(f, nz, p.x.data(), p.indx.data(), p.y.data()),
                            is_complex<T> ? conjugated : plain),
                      bound);
        }
}

TYPED_TEST(Sparse, TouchesNothingWithoutElements) {
    using T = TypeParam;
    T *const none = nullptr;
    for (form f : {form::fortran, form::c})
        for (vox_int nz : {0, -3}) {
            axpyi(f, nz, narrow<T>(1), none, nullptr, none);
            gthr(f, nz, none, none, nullptr);
            gthrz(f, nz, none, none, nullptr);
            sctr(f, nz, none, nullptr, none);
            EXPECT_EQ(widen(doti(f, nz, none, nullptr, none)), wide(0));
        }
}

} // namespace
