// elementwise_test.cpp - copy, swap, scal, axpy, axpby, rot, rotm: every element against long double,
// nothing else touched, on every code path.
#include <cmath>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <string>

#include "tests/blas/level1.hpp"

namespace {

using namespace test;

// One routine with its scalars: how it is called, and what it does to one pair of elements. Sizes are
// those of the terms that were added up, as error bounds have them.
struct pair {
    wide x, y;
    long double size_x, size_y;
};
template <class T>
struct routine {
    std::string name;
    std::function<void(form, const shape &, T *, T *)> call;
    std::function<void(pair &)> step;
    bool works_on_y_alone = false; // and then only with a positive increment
};

// x, y := h11 x + h12 y, h21 x + h22 y.
std::function<void(pair &)> linear(wide h11, wide h12, wide h21, wide h22) {
    return [=, s11 = modulus(h11), s12 = modulus(h12), s21 = modulus(h21),
            s22 = modulus(h22)](pair &p) {
        const pair old = p;
        p.x = h11 * old.x + h12 * old.y;
        p.y = h21 * old.x + h22 * old.y;
        p.size_x = s11 * old.size_x + s12 * old.size_y;
        p.size_y = s21 * old.size_x + s22 * old.size_y;
    };
}

template <class T>
std::vector<routine<T>> make_routines() {
    using R = real_of<T>;
    std::vector<routine<T>> all = {
        {"copy", [](form f, const shape &s, T *x, T *y) { copy(f, s.n, x, s.incx, y, s.incy); },
         [](pair &p) { p.y = p.x, p.size_y = p.size_x; }},
        {"swap", [](form f, const shape &s, T *x, T *y) { swap(f, s.n, x, s.incx, y, s.incy); },
         [](pair &p) { std::swap(p.x, p.y), std::swap(p.size_x, p.size_y); }},
    };
    const T alpha = narrow<T>({0.75L, -0.3L}), beta = narrow<T>({-0.7L, 0.4L}), none{};
    const wide a = widen(alpha);
    all.push_back({"scal",
                   [=](form f, const shape &s, T *, T *y) { scal(f, s.n, alpha, y, s.incy); },
                   linear(1, 0, 0, a), true});
    for (T factor : {alpha, none})
        all.push_back({"axpy",
                       [=](form f, const shape &s, T *x, T *y) {
                           axpy(f, s.n, factor, x, s.incx, y, s.incy);
                       },
                       linear(1, 0, widen(factor), 1)});
    const std::pair<T, T> factors[] = {{alpha, beta}, {none, beta}, {alpha, none}, {none, none}};
    for (auto [first, second] : factors)
        all.push_back({"axpby",
                       [first = first, second = second](form f, const shape &s, T *x, T *y) {
                           axpby(f, s.n, first, x, s.incx, second, y, s.incy);
                       },
                       linear(1, 0, widen(first), widen(second))});
    const R c = R(0.6), s1 = R(0.8);
    all.push_back(
        {"rot",
         [=](form f, const shape &s, T *x, T *y) { rot(f, s.n, x, s.incx, y, s.incy, c, s1); },
         linear(c, s1, -(long double)s1, c)});
    if constexpr (is_complex<T>) {
        const R factor = R(-0.7);
        all.push_back(
            {"real scal",
             [=](form f, const shape &s, T *, T *y) { real_scal(f, s.n, factor, y, s.incy); },
             linear(1, 0, 0, factor), true});
        const auto complex_rot = [=](form, const shape &s, T *x, T *y) {
            if constexpr (std::is_same_v<T, cfloat>)
                crot_(&s.n, x, &s.incx, y, &s.incy, &c, &alpha);
            else
                zrot_(&s.n, x, &s.incx, y, &s.incy, &c, &alpha);
        };
        all.push_back({"complex rot", complex_rot, linear(c, a, -std::conj(a), c)});
    } else {
        // What the flag says stands as NaN in the parameters: it must not be read.
        const R nan = std::numeric_limits<R>::quiet_NaN();
        const R h[4][5] = {{-1, R(0.9), R(-0.4), R(0.5), R(0.8)},
                           {0, nan, R(-0.4), R(0.5), nan},
                           {1, R(0.9), nan, nan, R(0.8)},
                           {-2, nan, nan, nan, nan}};
        const std::function<void(pair &)> steps[4] = {
            linear(h[0][1], h[0][3], h[0][2], h[0][4]), linear(1, h[1][3], h[1][2], 1),
            linear(h[2][1], 1, -1, h[2][4]), linear(1, 0, 0, 1)};
        for (int i = 0; i < 4; ++i) {
            const std::vector<R> param(h[i], h[i] + 5);
            all.push_back({"rotm",
                           [=](form f, const shape &s, T *x, T *y) {
                               rotm(f, s.n, x, s.incx, y, s.incy, param.data());
                           },
                           steps[i]});
        }
    }
    return all;
}
template <class T>
const std::vector<routine<T>> &routines() {
    static const std::vector<routine<T>> all = make_routines<T>();
    return all;
}

// The routine in long double, step by step, so that it serves increment zero too.
struct operand {
    std::vector<wide> value;
    std::vector<long double> size;

    template <class T>
    explicit operand(const std::vector<T> &v) : value(v.size()), size(v.size()) {
        for (size_t i = 0; i < v.size(); ++i) {
            value[i] = widen(v[i]);
            size[i] = modulus(value[i]);
        }
    }
};
template <class T>
void run_reference(const routine<T> &r, const shape &s, operand &x, operand &y) {
    if (r.works_on_y_alone && s.incy < 1)
        return;
    for (vox_int i = 0; i < s.n; ++i) {
        const size_t ix = place(s.n, s.incx, i), iy = place(s.n, s.incy, i);
        pair p = {x.value[ix], y.value[iy], x.size[ix], y.size[iy]};
        const pair old = p;
        r.step(p);
        if (!r.works_on_y_alone && (p.x != old.x || p.size_x != old.size_x)) {
            x.value[ix] = p.x;
            x.size[ix] = p.size_x;
        }
        y.value[iy] = p.y;
        y.size[iy] = p.size_y;
    }
}

// Elements that no step changed are equal; the others are within gamma(2) of their terms for real and
// sqrt(2) gamma(3) for complex numbers, per step; repeated steps may underflow, by half a denormal
// number each.
template <class T>
void expect_close(const operand &want, const T *got, const operand &before, int64_t steps) {
    using R = real_of<T>;
    const long double bound =
        is_complex<T> ? std::sqrt(2.0L) * test::gamma<R>(3 * steps) : test::gamma<R>(2 * steps);
    const long double underflow = (steps - 1.0L) * std::numeric_limits<R>::denorm_min();
    for (size_t i = 0; i < want.value.size(); ++i) {
        const bool same = want.value[i] == before.value[i];
        const long double error = modulus(widen(got[i]) - want.value[i]);
        ASSERT_LE(error, same ? 0 : bound * want.size[i] + underflow) << "place " << i;
    }
}

template <class T>
void check_all(const shape &s) {
    const edge where = s.n % 2 ? edge::back : edge::front;
    const std::vector<T> x0 = random_numbers<T>(extent(s.n, s.incx), 1),
                         y0 = random_numbers<T>(extent(s.n, s.incy), 2);
    const operand x_before(x0), y_before(y0);
    const int64_t steps = s.incx == 0 || s.incy == 0 ? s.n : 1;
    for (const routine<T> &r : routines<T>()) {
        SCOPED_TRACE(::testing::Message() << r.name << ' ' << s);
        operand x_want = x_before, y_want = y_before;
        run_reference(r, s, x_want, y_want);
        for (form f : {form::fortran, form::c}) {
            if (f == form::c && s.n > 40)
                continue;
            const guarded<T> x(x0, where), y(y0, where);
            r.call(f, s, x.data(), y.data());
            ASSERT_NO_FATAL_FAILURE(expect_close(x_want, x.data(), x_before, steps));
            ASSERT_NO_FATAL_FAILURE(expect_close(y_want, y.data(), y_before, steps));
        }
    }
}

template <class T>
class Elementwise : public ::testing::Test {};
TYPED_TEST_SUITE(Elementwise, element_types);

TYPED_TEST(Elementwise, ComputesEveryElementAndTouchesNothingElse) {
    for (const shape &s : shapes())
        ASSERT_NO_FATAL_FAILURE(check_all<TypeParam>(s));
}

TYPED_TEST(Elementwise, ComputesTheSameInAnyNumberOfParts) {
    const thread_counts counts;
    const vox_int n = 560000 / sizeof(TypeParam) + 1; // enough for several parts of every type
    counts.set(3);
    check_all<TypeParam>({n, 1, 1});
    counts.set(8);
    check_all<TypeParam>({n, -2, 1});
}

TYPED_TEST(Elementwise, TouchesNothingWithoutElements) {
    using T = TypeParam;
    for (const routine<T> &r : routines<T>())
        for (vox_int n : {0, -1, std::numeric_limits<vox_int>::min()})
            for (form f : {form::fortran, form::c})
                r.call(f, {n, 1, 1}, nullptr, nullptr);
}

TYPED_TEST(Elementwise, KeepsBitsInCopies) {
    using T = TypeParam;
    const size_t n = 37, bytes = n * sizeof(T);
    std::vector<T> x(n), y(n), z = random_numbers<T>(n, 3);
    unsigned char pattern = 0;
    for (size_t i = 0; i < bytes; ++i) // among them quiet and signalling NaN and denormal numbers
        reinterpret_cast<unsigned char *>(x.data())[i] = pattern += i % 7 ? 0 : 0x7f;
    const std::vector<T> x0 = x, z0 = z;
    copy(form::fortran, vox_int(n), x.data(), 1, y.data(), 1);
    EXPECT_EQ(std::memcmp(y.data(), x0.data(), bytes), 0);
    swap(form::fortran, vox_int(n), x.data(), 1, z.data(), 1);
    EXPECT_EQ(std::memcmp(z.data(), x0.data(), bytes), 0);
    EXPECT_EQ(std::memcmp(x.data(), z0.data(), bytes), 0);
}

// So long that copies go past the caches: every element, none beside them, whatever the alignment.
TYPED_TEST(Elementwise, CopiesLongVectorsFromAndToAnyAddress) {
    using T = TypeParam;
    const thread_counts counts;
    counts.set(1);
    const size_t n = 16 * 1024 * 1024 / sizeof(T) + 37;
    const T canary = narrow<T>(-1);
    std::vector<T> x(n + 8), y(n + 16);
    for (size_t i = 0; i < x.size(); ++i)
        x[i] = narrow<T>((long double)(i % 8388608));
    for (size_t shift : {0, 1, 3}) {
        std::fill(y.begin(), y.end(), canary);
        copy(form::fortran, vox_int(n), &x[shift + 1], 1, &y[8 - shift], 1);
        EXPECT_EQ(std::memcmp(&x[shift + 1], &y[8 - shift], n * sizeof(T)), 0);
        for (size_t i : {7 - shift, 8 - shift + n})
            EXPECT_EQ(widen(y[i]), widen(canary));
    }
}

template <class T>
bool is_nan(T a) {
    return std::isnan(widen(a).real()) || std::isnan(widen(a).imag());
}

// NaN planted at each position: where it must go, where it must stay, and where it must vanish.
TYPED_TEST(Elementwise, FollowsNaNFromEveryPosition) {
    using T = TypeParam;
    const T nan = narrow<T>({std::numeric_limits<long double>::quiet_NaN(), 0});
    const T none{}, two = narrow<T>(2), unit = narrow<T>(1);
    for (vox_int n : {1, 5, 23, 70})
        for (vox_int inc : {1, 2})
            for (vox_int at = 0; at < n; ++at) {
                const size_t length = extent(n, inc), hit = size_t(at * inc);
                std::vector<T> x = random_numbers<T>(length, 4), y = random_numbers<T>(length, 5);
                const std::vector<T> clean = y;
                x[hit] = nan;
                const auto nans = [&](const std::vector<T> &v) {
                    size_t count = 0;
                    for (vox_int i = 0; i < n; ++i)
                        count += is_nan(v[size_t(i * inc)]);
                    return count;
                };
                axpy(form::fortran, n, none, x.data(), inc, y.data(), inc);
                axpby(form::fortran, n, none, x.data(), inc, two, y.data(), inc);
                EXPECT_EQ(nans(y), 0U) << "a zero factor reads nothing";
                axpy(form::fortran, n, unit, x.data(), inc, y.data(), inc);
                EXPECT_TRUE(nans(y) == 1 && is_nan(y[hit]));
                axpby(form::fortran, n, two, clean.data(), inc, none, y.data(), inc);
                EXPECT_EQ(nans(y), 0U) << "beta = 0 overwrites";
                scal(form::fortran, n, none, x.data(), inc);
                EXPECT_TRUE(nans(x) == 1 && is_nan(x[hit])) << "zero multiplies";
            }
}

} // namespace
