// reductions_test.cpp - dot, asum, nrm2, iamax, iamin against long double, on every code path.
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <string>

#include "tests/blas/level1.hpp"

namespace {

using namespace test;

// A value and a bound of its error.
struct expected {
    wide value;
    long double bound;
};
// A sum: how it is called, its terms, their error over their sizes' sum, and what is done to the sum.
template <class T>
struct reduction {
    std::string name;
    std::function<wide(form, const shape &, const T *, const T *)> call;
    std::function<wide(wide, wide)> term;
    std::function<long double(vox_int)> constant;
    std::function<void(const shape &, expected &)> finish = {};

    expected reference(const shape &s, const T *x, const T *y) const {
        expected sum = {0, 0};
        for (vox_int i = 0; i < s.n; ++i) {
            const wide t = term(widen(x[place(s.n, s.incx, i)]), widen(y[place(s.n, s.incy, i)]));
            sum.value += t;
            sum.bound += modulus(t);
        }
        sum.bound *= constant(s.n);
        if (finish)
            finish(s, sum);
        return sum;
    }
};

long double magnitude(wide a) { return std::fabs(a.real()) + std::fabs(a.imag()); }

// gamma(n), for complex numbers sqrt(2) gamma(n + 2): Higham, section 3.6.
template <class T>
long double dot_constant(vox_int n) {
    using R = real_of<T>;
    return is_complex<T> ? std::sqrt(2.0L) * test::gamma<R>(n + 2) : test::gamma<R>(n);
}

template <class T>
std::vector<reduction<T>> make_reductions() {
    using R = real_of<T>;
    std::vector<reduction<T>> all = {
        {"dot",
         [](form f, const shape &s, const T *x, const T *y) {
             return widen(dot(f, s.n, x, s.incx, y, s.incy));
         },
         std::multiplies<wide>(), dot_constant<T>},
        {"dotc",
         [](form f, const shape &s, const T *x, const T *y) {
             return widen(dotc(f, s.n, x, s.incx, y, s.incy));
         },
         [](wide a, wide b) { return std::conj(a) * b; }, dot_constant<T>},
        {"asum",
         [](form f, const shape &s, const T *x, const T *) {
             return wide(asum(f, s.n, x, s.incx));
         },
         [](wide a, wide) { return magnitude(a); }, [](vox_int n) { return test::gamma<R>(2 * n); },
         [](const shape &s, expected &e) {
             if (s.incx < 1)
                 e = {0, 0};
         }},
        {"nrm2",
         [](form f, const shape &s, const T *x, const T *) {
             return wide(nrm2(f, s.n, x, s.incx));
         },
         [](wide a, wide) { return std::norm(a); }, [](vox_int) { return 0; },
         [](const shape &s, expected &e) {
             e.value = std::sqrt(e.value.real());
             e.bound = e.value.real() * test::gamma<R>((is_complex<T> ? 2 : 1) * s.n / 2 + 2);
         }},
    };
    if constexpr (std::is_same_v<T, float>) {
        all.push_back({"dsdot",
                       [](form f, const shape &s, const T *x, const T *y) {
                           return wide(either(f, cblas_dsdot, dsdot_, s.n, x, s.incx, y, s.incy));
                       },
                       std::multiplies<wide>(), test::gamma<double>});
        all.push_back(
            {"sdsdot",
             [](form f, const shape &s, const T *x, const T *y) {
                 return wide(either(f, cblas_sdsdot, sdsdot_, s.n, 1.5F, x, s.incx, y, s.incy));
             },
             std::multiplies<wide>(), [](vox_int n) { return test::gamma<double>(n + 1); },
             [](const shape &s, expected &e) {
                 e.value += 1.5L;
                 e.bound += unit_roundoff<float> * (std::abs(e.value) + e.bound) +
                            test::gamma<double>(s.n + 1) * 1.5L;
             }});
    }
    return all;
}
template <class T>
const std::vector<reduction<T>> &reductions() {
    static const std::vector<reduction<T>> all = make_reductions<T>();
    return all;
}

// The place of the best magnitude by the reference's loop; C counts from 0.
template <class T, class Better>
int64_t place_of_best(const shape &s, const T *x, Better better) {
    if (s.n < 1 || s.incx < 1)
        return 0;
    using R = real_of<T>;
    const auto key = [&](vox_int i) { return R(magnitude(widen(x[size_t(i) * size_t(s.incx)]))); };
    vox_int best = 0;
    R best_key = key(best);
    for (vox_int i = 1; i < s.n; ++i)
        if (const R k = key(i); better(k, best_key)) {
            best = i;
            best_key = k;
        }
    return best + 1;
}
template <class T>
void expect_places(const shape &s, const T *x) {
    const int64_t largest = place_of_best(s, x, std::greater<>()),
                  smallest = place_of_best(s, x, std::less<>());
    ASSERT_EQ(iamax(form::fortran, s.n, x, s.incx), largest);
    ASSERT_EQ(iamin(form::fortran, s.n, x, s.incx), smallest);
    ASSERT_EQ(iamax(form::c, s.n, x, s.incx), std::max<int64_t>(largest - 1, 0));
    ASSERT_EQ(iamin(form::c, s.n, x, s.incx), std::max<int64_t>(smallest - 1, 0));
}

template <class T>
class Reductions : public ::testing::Test {};
TYPED_TEST_SUITE(Reductions, element_types);

template <class T>
void check(const shape &s) {
    SCOPED_TRACE(s);
    const edge where = s.n % 2 ? edge::back : edge::front;
    const guarded<T> x(random_numbers<T>(extent(s.n, s.incx), 1), where);
    const guarded<T> y(random_numbers<T>(extent(s.n, s.incy), 2), where);
    for (const reduction<T> &r : reductions<T>()) {
        const expected e = r.reference(s, x.data(), y.data());
        for (form f : {form::fortran, form::c})
            ASSERT_LE(std::abs(r.call(f, s, x.data(), y.data()) - e.value), e.bound) << r.name;
    }
    expect_places(s, x.data());
}

TYPED_TEST(Reductions, StayWithinTheirErrorBoundsAndOperands) {
    std::vector<shape> all = shapes();
    all.push_back({400003, 1, 1}); // each of two threads reads from beyond the second-level cache
    for (const shape &s : all) {
        check<TypeParam>(s);
        if (this->HasFatalFailure())
            return;
    }
}

TYPED_TEST(Reductions, ComputeTheSameInAnyNumberOfParts) {
    using T = TypeParam;
    const thread_counts counts;
    const vox_int n = 60021;
    std::vector<T> x(size_t(n), narrow<T>(std::numeric_limits<long double>::quiet_NaN()));
    for (int threads : {1, 3, 8}) {
        counts.set(threads);
        for (const shape &s : {shape{n, 1, 1}, {n, -2, 1}, {n, 3, -1}})
            check<T>(s);
        for (size_t number : {n - 1, n / 2, 0}) { // parts of NaN alone, and beginning with NaN
            x[number] = narrow<T>(0.5L);
            expect_places({n, 1, 1}, x.data());
        }
    }
}

TYPED_TEST(Reductions, GiveTheSameBitsWhateverTheAlignment) {
    using T = TypeParam;
    for (vox_int n : {7, 64, 129, 1000, 6000, 90000}) {
        const std::vector<T> x = random_numbers<T>(size_t(n), 3),
                             y = random_numbers<T>(size_t(n), 4);
        std::vector<T> px(size_t(n) + 16), py(size_t(n) + 16);
        for (const reduction<T> &r : reductions<T>()) {
            const wide want = r.call(form::fortran, {n, 1, 1}, x.data(), y.data());
            for (size_t shift : {1, 2, 5, 8, 15}) {
                std::copy(x.begin(), x.end(), px.begin() + ptrdiff_t(shift));
                std::copy(y.begin(), y.end(), py.begin() + ptrdiff_t(16 - shift));
                const wide got = r.call(form::fortran, {n, 1, 1}, &px[shift], &py[16 - shift]);
                EXPECT_EQ(got, want) << r.name << ' ' << n << ' ' << shift;
            }
        }
    }
}

TYPED_TEST(Reductions, CarrySpecialValuesFromEveryPosition) {
    using T = TypeParam;
    using R = real_of<T>;
    const R inf = std::numeric_limits<R>::infinity(), nan = std::numeric_limits<R>::quiet_NaN();
    const auto is_nan = [](wide a) { return std::isnan(a.real()) || std::isnan(a.imag()); };
    for (vox_int n : {1, 2, 3, 9, 31, 70, 150})
        for (vox_int inc : {1, 2}) {
            const shape s = {n, inc, inc};
            const std::vector<T> ones(extent(n, inc), narrow<T>(1));
            for (size_t i = 0; i < ones.size(); i += size_t(inc)) {
                std::vector<T> x = ones;
                x[i] = narrow<T>(nan);
                for (const reduction<T> &r : reductions<T>())
                    EXPECT_TRUE(is_nan(r.call(form::fortran, s, x.data(), ones.data()))) << r.name;
                expect_places(s, x.data());
                x[i] = narrow<T>(-inf);
                EXPECT_EQ(asum(form::fortran, n, x.data(), inc), inf);
                EXPECT_EQ(nrm2(form::fortran, n, x.data(), inc), inf);
                EXPECT_EQ(widen(dot(form::fortran, n, x.data(), inc, ones.data(), inc)).real(),
                          is_complex<T> ? wide(-inf).real() : -inf);
                expect_places(s, x.data());
                x[(i + size_t(inc)) % x.size() / size_t(inc) * size_t(inc)] = narrow<T>(nan);
                EXPECT_TRUE(std::isnan(nrm2(form::fortran, n, x.data(), inc)));
            }
        }
}

// Ties, equal magnitudes of both signs, zeros of both signs, and NaN in several places.
TYPED_TEST(Reductions, FindTheFirstOfEquals) {
    using T = TypeParam;
    const real_of<T> nan = std::numeric_limits<real_of<T>>::quiet_NaN();
    for (vox_int n : {2, 17, 64, 100, 1000, 3000, 60000})
        for (vox_int first : {0, 1, n / 2, n - 1})
            for (long double base : {0.0L, 1.0L}) {
                std::vector<T> x(size_t(n), narrow<T>(base));
                expect_places({n, 1, 1}, x.data());
                x[size_t(first)] = narrow<T>(-base);
                expect_places({n, 1, 1}, x.data());
                for (long double extreme : {0.5L, -2.0L}) {
                    x[size_t(first)] = x[size_t(n - 1)] = narrow<T>(extreme);
                    expect_places({n, 1, 1}, x.data());
                }
                x[size_t(n / 3)] = x[0] = narrow<T>(nan);
                expect_places({n, 1, 1}, x.data());
                x[0] = narrow<T>(base);
                expect_places({n, 1, 1}, x.data());
                if (this->HasFatalFailure())
                    return;
            }
}

// Norms at the ends of the range, also where one element dwarfs the others, and zeros.
TYPED_TEST(Reductions, NormsNeitherOverflowNorUnderflow) {
    using T = TypeParam;
    using R = real_of<T>;
    using limits = std::numeric_limits<R>;
    const R sizes[] = {
        limits::max() / 1024, std::sqrt(limits::max()),    1, std::sqrt(limits::min()),
        limits::min(),        1000 * limits::denorm_min(), 0};
    for (vox_int n : {1, 3, 17, 100, 600, 60000})
        for (R large : sizes)
            for (R small : sizes) {
                std::vector<T> x(size_t(n), narrow<T>({small, -small}));
                x[size_t(n / 2)] = narrow<T>({-large, large});
                const long double want =
                    std::sqrt(std::norm(widen(x[size_t(n / 2)])) +
                              (n - 1) * std::norm(widen(narrow<T>({small, small}))));
                if (want > limits::max())
                    continue;
                // Every part's norm and the whole may be rounded to a denormal number.
                const long double parts = vox_domain_get_max_threads(VOX_DOMAIN_BLAS),
                                  bound = want * test::gamma<R>(n + 2) +
                                          limits::denorm_min() * (1 + std::sqrt(parts)) / 2;
                for (vox_int inc : {1, -1})
                    EXPECT_LE(std::fabs(nrm2(form::fortran, n, x.data(), inc) - want), bound)
                        << n << ' ' << large << ' ' << small;
            }
}

TYPED_TEST(Reductions, TouchNothingWhenThereIsNothingToSum) {
    using T = TypeParam;
    for (vox_int n : {0, -1, std::numeric_limits<vox_int>::min()})
        for (const reduction<T> &r : reductions<T>())
            EXPECT_EQ(r.call(form::fortran, {n, 1, 1}, nullptr, nullptr),
                      wide(r.name == "sdsdot" ? 1.5L : 0))
                << r.name;
}

TEST(Cabs1, AddsTheMagnitudesOfBothParts) {
    const cfloat c = {-3, 4};
    const cdouble z = {5, -6};
    EXPECT_EQ(scabs1_(&c), 7);
    EXPECT_EQ(cblas_scabs1(&c), 7);
    EXPECT_EQ(dcabs1_(&z), 11);
    EXPECT_EQ(cblas_dcabs1(&z), 11);
}

} // namespace
