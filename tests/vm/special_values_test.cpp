// special_values_test.cpp - zeros, infinities, NaN, and the ends of the range: the results of C's Annex F and what
// is reported about them, in every kernel set and accuracy.
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/vm/accuracy.hpp"
#include "tests/vm/functions.hpp"
#include "tests/vm/kernel_sets.hpp"

namespace {

using namespace test;

constexpr int ok = TQM_STATUS_OK, errdom = TQM_STATUS_ERRDOM, sing = TQM_STATUS_SING,
              overflow = TQM_STATUS_OVERFLOW, underflow = TQM_STATUS_UNDERFLOW;

template <class T>
struct row {
    const char *function;
    T a, b, r;
    int status;
};

// Of T alone: inf, nan, the smallest numbers, the largest.
template <class T>
std::vector<row<T>> rows() {
    using limits = std::numeric_limits<T>;
    constexpr T inf = limits::infinity(), nan = limits::quiet_NaN(), max = limits::max(),
                min = limits::min(), tiny = limits::denorm_min(), eps = limits::epsilon();
    constexpr T big = sizeof(T) == 4 ? 150 : 1100; // 2^big and e^big are too large
    constexpr T subnormal = sizeof(T) == 4 ? -140 : -1060;
    constexpr T half_up = T(0.5) - eps / 4; // the number before 1/2
    std::vector<row<T>> all = {
        {"Abs", T(-0.0), 0, 0, ok},
        {"Abs", -inf, 0, inf, ok},
        {"Abs", -tiny, 0, tiny, ok},
        {"Abs", nan, 0, nan, ok},

        {"Add", inf, -inf, nan, errdom},
        {"Add", -inf, inf, nan, errdom},
        {"Add", inf, inf, inf, ok},
        {"Add", -inf, max, -inf, ok},
        {"Add", max, max, inf, overflow},
        {"Add", -max, -max, -inf, overflow},
        {"Add", max, tiny, max, ok},
        {"Add", T(-0.0), T(-0.0), T(-0.0), ok},
        {"Add", 0, T(-0.0), 0, ok},
        {"Add", 1, -1, 0, ok},
        {"Add", tiny, tiny, 2 * tiny, ok},
        {"Add", nan, inf, nan, ok},
        {"Add", -inf, nan, nan, ok},

        {"Ceil", T(-0.5), 0, T(-0.0), ok},
        {"Ceil", tiny, 0, 1, ok},
        {"Ceil", -tiny, 0, T(-0.0), ok},
        {"Ceil", T(-0.0), 0, T(-0.0), ok},
        {"Ceil", 1 / eps + 1, 0, 1 / eps + 1, ok},
        {"Ceil", max, 0, max, ok},
        {"Ceil", -inf, 0, -inf, ok},
        {"Ceil", nan, 0, nan, ok},

        {"Div", 1, 0, inf, sing},
        {"Div", 1, T(-0.0), -inf, sing},
        {"Div", -max, 0, -inf, sing},
        {"Div", 0, 0, nan, errdom},
        {"Div", T(-0.0), 0, nan, errdom},
        {"Div", inf, -inf, nan, errdom},
        {"Div", inf, 0, inf, ok},
        {"Div", 1, -inf, T(-0.0), ok},
        {"Div", T(-0.0), 1, T(-0.0), ok},
        {"Div", max, T(0.5), inf, overflow},
        {"Div", max, -tiny, -inf, overflow},
        {"Div", min, max, 0, underflow},
        {"Div", -tiny, 2, T(-0.0), underflow},
        {"Div", min, 2, min / 2, ok},
        {"Div", nan, 0, nan, ok},
        {"Div", 0, nan, nan, ok},

        {"Exp", 0, 0, 1, ok},
        {"Exp", T(-0.0), 0, 1, ok},
        {"Exp", tiny, 0, 1, ok},
        {"Exp", inf, 0, inf, ok},
        {"Exp", -inf, 0, 0, ok},
        {"Exp", big, 0, inf, overflow},
        {"Exp", max, 0, inf, overflow},
        {"Exp", -big, 0, 0, underflow},
        {"Exp", -max, 0, 0, underflow},
        {"Exp", nan, 0, nan, ok},

        {"Floor", T(-0.5), 0, -1, ok},
        {"Floor", tiny, 0, 0, ok},
        {"Floor", -tiny, 0, -1, ok},
        {"Floor", T(-0.0), 0, T(-0.0), ok},
        {"Floor", -1 / eps - 1, 0, -1 / eps - 1, ok},
        {"Floor", -max, 0, -max, ok},
        {"Floor", inf, 0, inf, ok},
        {"Floor", nan, 0, nan, ok},

        {"Inv", 0, 0, inf, sing},
        {"Inv", T(-0.0), 0, -inf, sing},
        {"Inv", inf, 0, 0, ok},
        {"Inv", -inf, 0, T(-0.0), ok},
        {"Inv", tiny, 0, inf, overflow},
        {"Inv", -tiny, 0, -inf, overflow},
        {"Inv", max, 0, 1 / max, underflow},
        {"Inv", -1 / min, 0, -min, ok},
        {"Inv", nan, 0, nan, ok},

        {"InvSqrt", 0, 0, inf, sing},
        {"InvSqrt", T(-0.0), 0, -inf, sing},
        {"InvSqrt", inf, 0, 0, ok},
        {"InvSqrt", -1, 0, nan, errdom},
        {"InvSqrt", -tiny, 0, nan, errdom},
        {"InvSqrt", -inf, 0, nan, errdom},
        {"InvSqrt", nan, 0, nan, ok},

        {"Ln", 0, 0, -inf, sing},
        {"Ln", T(-0.0), 0, -inf, sing},
        {"Ln", 1, 0, 0, ok},
        {"Ln", -1, 0, nan, errdom},
        {"Ln", -tiny, 0, nan, errdom},
        {"Ln", -inf, 0, nan, errdom},
        {"Ln", inf, 0, inf, ok},
        {"Ln", nan, 0, nan, ok},

        {"Log1p", 0, 0, 0, ok},
        {"Log1p", T(-0.0), 0, T(-0.0), ok},
        {"Log1p", tiny, 0, tiny, underflow},
        {"Log1p", -tiny, 0, -tiny, underflow},
        {"Log1p", -1, 0, -inf, sing},
        {"Log1p", -1 - eps, 0, nan, errdom},
        {"Log1p", -inf, 0, nan, errdom},
        {"Log1p", inf, 0, inf, ok},
        {"Log1p", nan, 0, nan, ok},

        {"Mul", inf, 0, nan, errdom},
        {"Mul", T(-0.0), -inf, nan, errdom},
        {"Mul", inf, -2, -inf, ok},
        {"Mul", 0, -2, T(-0.0), ok},
        {"Mul", max, 2, inf, overflow},
        {"Mul", max, -max, -inf, overflow},
        {"Mul", min, T(0.5), min / 2, ok},
        {"Mul", tiny, T(0.5), 0, underflow},
        {"Mul", -min, min, T(-0.0), underflow},
        {"Mul", nan, 0, nan, ok},

        {"Round", T(0.5), 0, 1, ok},
        {"Round", T(-0.5), 0, -1, ok},
        {"Round", T(2.5), 0, 3, ok},
        {"Round", half_up, 0, 0, ok},
        {"Round", -half_up, 0, T(-0.0), ok},
        {"Round", 1 / eps - 1, 0, 1 / eps - 1, ok},
        {"Round", 1 / eps + 1, 0, 1 / eps + 1, ok},
        {"Round", T(-0.0), 0, T(-0.0), ok},
        {"Round", -max, 0, -max, ok},
        {"Round", -inf, 0, -inf, ok},
        {"Round", nan, 0, nan, ok},

        {"Sqr", T(-0.0), 0, 0, ok},
        {"Sqr", -inf, 0, inf, ok},
        {"Sqr", -max, 0, inf, overflow},
        {"Sqr", min, 0, 0, underflow},
        {"Sqr", nan, 0, nan, ok},

        {"Sqrt", T(-0.0), 0, T(-0.0), ok},
        {"Sqrt", -1, 0, nan, errdom},
        {"Sqrt", -tiny, 0, nan, errdom},
        {"Sqrt", -inf, 0, nan, errdom},
        {"Sqrt", inf, 0, inf, ok},
        {"Sqrt", nan, 0, nan, ok},

        {"Sub", inf, inf, nan, errdom},
        {"Sub", inf, -inf, inf, ok},
        {"Sub", -max, max, -inf, overflow},
        {"Sub", T(-0.0), 0, T(-0.0), ok},
        {"Sub", 1, 1, 0, ok},
        {"Sub", min, tiny, min - tiny, ok},
        {"Sub", nan, inf, nan, ok},

        {"Tanh", 0, 0, 0, ok},
        {"Tanh", T(-0.0), 0, T(-0.0), ok},
        {"Tanh", tiny, 0, tiny, underflow},
        {"Tanh", -tiny, 0, -tiny, underflow},
        {"Tanh", inf, 0, 1, ok},
        {"Tanh", -inf, 0, -1, ok},
        {"Tanh", -max, 0, -1, ok},
        {"Tanh", nan, 0, nan, ok},
    };
    for (const char *pow : {"Pow", "Powx"})
        for (const row<T> &r : std::vector<row<T>>{
                 {pow, 0, -3, inf, sing},
                 {pow, T(-0.0), -3, -inf, sing},
                 {pow, T(-0.0), -2, inf, sing},
                 {pow, T(-0.0), T(-0.5), inf, sing},
                 {pow, T(-0.0), -inf, inf, ok},
                 {pow, T(-0.0), 3, T(-0.0), ok},
                 {pow, T(-0.0), 2, 0, ok},
                 {pow, 0, T(0.5), 0, ok},
                 {pow, 0, 0, 1, ok},
                 {pow, -1, inf, 1, ok},
                 {pow, -1, -inf, 1, ok},
                 {pow, -1, max, 1, ok},
                 {pow, -1, 1 / eps + 1, -1, ok},
                 {pow, 1, inf, 1, ok},
                 {pow, 1, nan, 1, ok},
                 {pow, nan, 0, 1, ok},
                 {pow, inf, T(-0.0), 1, ok},
                 {pow, nan, 1, nan, ok},
                 {pow, 2, nan, nan, ok},
                 {pow, -2, T(0.5), nan, errdom},
                 {pow, -tiny, T(-1.5), nan, errdom},
                 {pow, T(0.5), inf, 0, ok},
                 {pow, T(-0.5), -inf, inf, ok},
                 {pow, -2, inf, inf, ok},
                 {pow, 2, -inf, 0, ok},
                 {pow, -inf, -3, T(-0.0), ok},
                 {pow, -inf, T(-2.5), 0, ok},
                 {pow, -inf, 3, -inf, ok},
                 {pow, -inf, T(0.5), inf, ok},
                 {pow, inf, -tiny, 0, ok},
                 {pow, inf, tiny, inf, ok},
                 {pow, 2, big, inf, overflow},
                 {pow, -2, big + 1, -inf, overflow},
                 {pow, -2, max, inf, overflow},
                 {pow, 1 + eps, max, inf, overflow},
                 {pow, tiny, -big, inf, overflow},
                 {pow, T(0.5), 2 * big, 0, underflow},
                 {pow, T(-0.5), 2 * big + 1, T(-0.0), underflow},
                 {pow, max, -max, 0, underflow},
                 {pow, 2, subnormal, T(std::ldexp(1.0, int(subnormal))), ok},
                 {pow, max, tiny, 1, ok},
             })
            all.push_back(r);
    return all;
}

struct report {
    int count = 0;
    tqmErrorContext last;
} told;
int listen(tqmErrorContext *context) {
    ++told.count;
    told.last = *context;
    return 0;
}

template <class T>
bool same(T x, T y) {
    return std::isnan(x) ? std::isnan(y) : x == y && std::signbit(x) == std::signbit(y);
}

// One special element among ones, its place another for each row.
template <class T>
void check(const vector_function<T> &f, const row<T> &c, size_t place) {
    constexpr size_t n = 19;
    std::vector<T> a(n, 1), b(n, f.shape == arguments::fixed ? c.b : T(1)), r(n);
    a[place] = c.a, b[place] = c.b;
    in_every_kernel_set([&](int index, int accuracy) {
        SCOPED_TRACE(testing::Message() << f.name << " index " << index << " accuracy " << accuracy
                                        << std::hexfloat << ": " << c.a << ", " << c.b);
        tqmClearErrStatus();
        told = {.last = {}};
        f.vm(int(n), a.data(), b.data(), r.data(), accuracy | TQM_ERRMODE_CALLBACK);
        EXPECT_TRUE(same(r[place], c.r)) << r[place] << " instead of " << c.r;
        EXPECT_EQ(tqmGetErrStatus(), c.status);
        EXPECT_EQ(told.count, c.status != ok);
        if (told.count == 0 || c.status == ok)
            return;
        EXPECT_EQ(told.last.iCode, c.status);
        EXPECT_EQ(told.last.iIndex, int(place));
        EXPECT_STREQ(told.last.cFuncName, f.name);
        EXPECT_EQ(told.last.iFuncNameLen, int(std::strlen(f.name)));
        EXPECT_TRUE(same(T(told.last.dbA1), c.a) && same(T(told.last.dbR1), c.r));
        if (f.shape != arguments::one) {
            EXPECT_TRUE(same(T(told.last.dbA2), c.b));
        }
    });
}

template <class T>
void check_all() {
    tqmSetErrorCallBack(listen);
    for (const vector_function<T> &f : vector_functions<T>()) {
        size_t place = 0;
        for (const row<T> &c : rows<T>())
            if (std::strcmp(c.function, f.name + 2) == 0)
                check(f, c, place++ % 19);
        EXPECT_GT(place, 0u) << f.name << " has no rows";
    }
}

TEST(SpecialValues, OfSinglePrecision) { check_all<float>(); }
TEST(SpecialValues, OfDoublePrecision) { check_all<double>(); }

} // namespace
