// lapacke_helpers_test.cpp - what the C interface of LAPACK is made of: the test for NaN, copies in the other
// layout, the switch and the messages.
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>

#include "tests/support/child.hpp"
#include "tests/support/element_types.hpp"
#include "tests/support/numbers.hpp"
#include "tests/support/wide.hpp"
#include "vox/vox.h"

namespace {

using namespace test;
using vox::is_complex;
using vox::real_of;

constexpr int row_major = 101, column_major = 102;

// What a helper is about: a whole matrix, or a triangle that stands for it.
enum class kind { general, conjugated, triangle, unit, positive, symmetric, hermitian };

struct shape {
    kind what;
    int layout;
    char uplo;
    vox_int m, n, ld, ld_other; // ld_other: of the other layout

    bool belongs(vox_int i, vox_int j) const {
        if (what == kind::general || what == kind::conjugated)
            return true;
        return i == j ? what != kind::unit : (i < j) == (uplo == 'U' || uplo == 'u');
    }
    size_t at(vox_int i, vox_int j) const {
        return size_t(layout == column_major ? i + j * ld : i * ld + j);
    }
    size_t other(vox_int i, vox_int j) const {
        return size_t(layout == column_major ? i * ld_other + j : i + j * ld_other);
    }
    size_t size() const { return size_t(ld * (layout == column_major ? n : m)); }
    size_t other_size() const { return size_t(ld_other * (layout == column_major ? m : n)); }
    char diag() const { return what == kind::unit ? 'u' : 'N'; }
};

std::ostream &operator<<(std::ostream &out, const shape &s) {
    return out << int(s.what) << " " << s.layout << " " << s.uplo << " " << s.m << "x" << s.n;
}

template <class T>
struct helpers;
#define HELPERS(p, T, ...)                                                                         \
    template <>                                                                                    \
    struct helpers<T> {                                                                            \
        static constexpr auto nancheck = LAPACKE_##p##_nancheck;                                   \
        static constexpr auto ge_nancheck = LAPACKE_##p##ge_nancheck;                              \
        static constexpr auto tr_nancheck = LAPACKE_##p##tr_nancheck;                              \
        static constexpr auto po_nancheck = LAPACKE_##p##po_nancheck;                              \
        static constexpr auto sy_nancheck = LAPACKE_##p##sy_nancheck;                              \
        static constexpr auto ge_trans = LAPACKE_##p##ge_trans;                                    \
        static constexpr auto tr_trans = LAPACKE_##p##tr_trans;                                    \
        static constexpr auto po_trans = LAPACKE_##p##po_trans;                                    \
        static constexpr auto sy_trans = LAPACKE_##p##sy_trans;                                    \
        __VA_ARGS__                                                                                \
    };
#define HERMITIAN(p)                                                                               \
    static constexpr auto he_nancheck = LAPACKE_##p##he_nancheck;                                  \
    static constexpr auto he_trans = LAPACKE_##p##he_trans;                                        \
    static constexpr auto ge_transc = LAPACKE_##p##ge_transc;
HELPERS(s, float)
HELPERS(d, double)
HELPERS(c, vox_complex_float, HERMITIAN(c))
HELPERS(z, vox_complex_double, HERMITIAN(z))

template <class T>
int has_nan(const shape &s, const T *a) {
    using h = helpers<T>;
    if (s.what == kind::triangle || s.what == kind::unit)
        return h::tr_nancheck(s.layout, s.uplo, s.diag(), s.n, a, s.ld);
    if (s.what == kind::positive)
        return h::po_nancheck(s.layout, s.uplo, s.n, a, s.ld);
    if (s.what == kind::symmetric)
        return h::sy_nancheck(s.layout, s.uplo, s.n, a, s.ld);
    if constexpr (is_complex<T>)
        if (s.what == kind::hermitian)
            return h::he_nancheck(s.layout, s.uplo, s.n, a, s.ld);
    return h::ge_nancheck(s.layout, s.m, s.n, a, s.ld);
}
template <class T>
void copy(const shape &s, const T *in, T *out) {
    using h = helpers<T>;
    if (s.what == kind::triangle || s.what == kind::unit)
        return h::tr_trans(s.layout, s.uplo, s.diag(), s.n, in, s.ld, out, s.ld_other);
    if (s.what == kind::positive)
        return h::po_trans(s.layout, s.uplo, s.n, in, s.ld, out, s.ld_other);
    if (s.what == kind::symmetric)
        return h::sy_trans(s.layout, s.uplo, s.n, in, s.ld, out, s.ld_other);
    if constexpr (is_complex<T>) {
        if (s.what == kind::hermitian)
            return h::he_trans(s.layout, s.uplo, s.n, in, s.ld, out, s.ld_other);
        if (s.what == kind::conjugated)
            return h::ge_transc(s.layout, s.m, s.n, in, s.ld, out, s.ld_other);
    }
    h::ge_trans(s.layout, s.m, s.n, in, s.ld, out, s.ld_other);
}

template <class T, class Body>
void for_shapes(std::initializer_list<std::pair<vox_int, vox_int>> sizes, const Body &body) {
    for (const auto &[m, n] : sizes)
        for (int layout : {row_major, column_major})
            for (kind what : {kind::general, kind::conjugated, kind::triangle, kind::unit,
                              kind::positive, kind::symmetric, kind::hermitian})
                for (char uplo : {'U', 'l'}) {
                    const bool whole = what == kind::general || what == kind::conjugated;
                    const bool complex = what == kind::conjugated || what == kind::hermitian;
                    if ((complex && !is_complex<T>) || (whole ? uplo != 'U' : m != n))
                        continue;
                    const bool by_columns = layout == column_major;
                    for (vox_int pad : {0, 3})
                        body(shape{what, layout, uplo, m, n, (by_columns ? m : n) + pad,
                                   (by_columns ? n : m) + 2 * pad});
                }
}

template <class T>
T nan_of() {
    return vox::make<T>(std::numeric_limits<real_of<T>>::quiet_NaN());
}

template <class T>
class Helpers : public ::testing::Test {};
TYPED_TEST_SUITE(Helpers, element_types);

TYPED_TEST(Helpers, FindANaNWhereverItCounts) {
    using T = TypeParam;
    using R = real_of<T>;
    const R inf = std::numeric_limits<R>::infinity();
    for_shapes<T>({{1, 1}, {3, 3}, {4, 7}, {9, 2}, {40, 40}}, [&](const shape &s) {
        SCOPED_TRACE(s);
        // infinities whose sum is NaN do not count, and neither does anything outside
        std::vector<T> a(s.size(), nan_of<T>());
        for (vox_int j = 0; j < s.n; ++j)
            for (vox_int i = 0; i < s.m; ++i)
                if (s.belongs(i, j))
                    a[s.at(i, j)] = vox::make<T>((i + j) % 2 ? inf : -inf, (i % 3) ? inf : -inf);
        EXPECT_EQ(has_nan(s, a.data()), 0);
        for (vox_int j = 0; j < s.n; ++j)
            for (vox_int i = 0; i < s.m; ++i)
                if (s.belongs(i, j)) {
                    const T before = a[s.at(i, j)];
                    a[s.at(i, j)] = nan_of<T>();
                    ASSERT_EQ(has_nan(s, a.data()), 1) << i << "," << j;
                    if constexpr (is_complex<T>) {
                        a[s.at(i, j)] = {1, nan_of<T>().real};
                        ASSERT_EQ(has_nan(s, a.data()), 1) << i << "," << j;
                    }
                    a[s.at(i, j)] = before;
                }
    });
}

TYPED_TEST(Helpers, FindANaNInAVector) {
    using T = TypeParam;
    for (vox_int inc : {1, -1, 3, -3, 0})
        for (vox_int n : {0, 1, 5, 70}) {
            const vox_int step = std::abs(inc), count = inc == 0 ? 1 : n;
            std::vector<T> x(size_t(70 * 3 + 1), nan_of<T>());
            for (vox_int i = 0; i < count; ++i)
                x[size_t(i * step)] = vox::make<T>(1, 2);
            EXPECT_EQ(helpers<T>::nancheck(n, x.data(), inc), 0) << n << " " << inc;
            for (vox_int i = 0; i < count; ++i) {
                x[size_t(i * step)] = nan_of<T>();
                EXPECT_EQ(helpers<T>::nancheck(n, x.data(), inc), 1) << n << " " << inc << " " << i;
                x[size_t(i * step)] = vox::make<T>(1, 2);
            }
        }
}

TYPED_TEST(Helpers, CopyWhatBelongsAndNothingElse) {
    using T = TypeParam;
    const auto same = [](T a, T b) { return std::memcmp(&a, &b, sizeof a) == 0; };
    for_shapes<T>({{1, 1}, {2, 5}, {16, 16}, {17, 17}, {33, 20}, {75, 75}}, [&](const shape &s) {
        SCOPED_TRACE(s);
        const auto re = random_vector<real_of<T>>(s.size(), 3),
                   im = random_vector<real_of<T>>(s.size(), 4);
        std::vector<T> in(s.size(), nan_of<T>());
        const T untouched = vox::make<T>(-77, 77);
        std::vector<T> out(s.other_size(), untouched), expected = out;
        for (vox_int j = 0; j < s.n; ++j)
            for (vox_int i = 0; i < s.m; ++i)
                if (s.belongs(i, j)) {
                    T &x = in[s.at(i, j)];
                    x = vox::make<T>(re[s.at(i, j)], im[s.at(i, j)]);
                    expected[s.other(i, j)] = vox::conj_if(s.what == kind::conjugated, x);
                }
        copy(s, in.data(), out.data());
        for (size_t k = 0; k < out.size(); ++k)
            ASSERT_TRUE(same(out[k], expected[k])) << k;
    });
}

TYPED_TEST(Helpers, TakeNothingForAnAnswer) {
    using T = TypeParam;
    T nan[4] = {nan_of<T>(), nan_of<T>(), nan_of<T>(), nan_of<T>()};
    const T *const nothing = nullptr;
    EXPECT_EQ(helpers<T>::nancheck(2, nothing, 1), 0);
    for (kind what : {kind::general, kind::triangle, kind::positive, kind::symmetric}) {
        const auto asked = [&](int layout, char uplo) {
            return shape{what, layout, uplo, 2, 2, 2, 2};
        };
        EXPECT_EQ(has_nan<T>(asked(row_major, 'U'), nothing), 0);
        EXPECT_EQ(has_nan<T>(asked(column_major, 'U'), nan), 1);
        EXPECT_EQ(has_nan<T>(asked(100, 'U'), nan), 0);
        T out[4] = {vox::make<T>(1), vox::make<T>(2), vox::make<T>(3), vox::make<T>(4)};
        copy<T>(asked(row_major, 'U'), nothing, out);
        copy<T>(asked(row_major, 'U'), nan, nullptr);
        if (what != kind::general) {
            EXPECT_EQ(has_nan<T>(asked(column_major, 'X'), nan), 0);
            copy<T>(asked(row_major, 'X'), nan, out);
            copy<T>(asked(100, 'U'), nan, out);
        }
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(vox::real(out[i]), i + 1);
    }
}

// The switch is read from the environment once, at the first question, unless it has been set.
CHILD(asks) { std::printf("%d%d", LAPACKE_get_nancheck(), LAPACKE_get_nancheck()); }
CHILD(sets_and_asks) {
    LAPACKE_set_nancheck(0);
    std::printf("%d", LAPACKE_get_nancheck());
    LAPACKE_set_nancheck(-5);
    std::printf("%d", LAPACKE_get_nancheck());
}
CHILD(asks_and_sets) {
    std::printf("%d", LAPACKE_get_nancheck());
    LAPACKE_set_nancheck(1);
    std::printf("%d", LAPACKE_get_nancheck());
}

TEST(NaNCheck, FollowsTheEnvironmentUntilItIsSet) {
    EXPECT_EQ(run_child(asks).out, "11");
    const struct {
        std::string value;
        const char *out;
    } cases[] = {{"0", "00"},
                 {"1", "11"},
                 {"-3", "11"},
                 {"00", "00"},
                 {"", "00"},
                 {"off", "00"},
                 {" 0x1", "00"},
                 {"7off", "11"},
                 {std::string(256, '0'), "00"},
                 {std::string(257, '0'), "11"}};
    for (const auto &c : cases)
        EXPECT_EQ(run_child(asks, {{"LAPACKE_NANCHECK", c.value}}).out, c.out) << c.value;
    EXPECT_EQ(run_child(sets_and_asks, {{"LAPACKE_NANCHECK", "1"}}).out, "01");
    EXPECT_EQ(run_child(asks_and_sets, {{"LAPACKE_NANCHECK", "0"}}).out, "01");
}

CHILD(reports) {
    for (vox_int info : {-1010, -1011, -1, -17, 0, 3, std::numeric_limits<vox_int>::min()})
        LAPACKE_xerbla("LAPACKE_dgetrf", info);
}

TEST(Messages, SayWhatIsWrong) {
    EXPECT_EQ(run_child(reports).out, "Not enough memory to allocate work array in LAPACKE_dgetrf\n"
                                      "Not enough memory to transpose matrix in LAPACKE_dgetrf\n"
                                      "Wrong parameter 1 in LAPACKE_dgetrf\n"
                                      "Wrong parameter 17 in LAPACKE_dgetrf\n"
                                      "Wrong parameter 2147483648 in LAPACKE_dgetrf\n");
    EXPECT_NE(LAPACKE_lsame('u', 'U'), 0);
    EXPECT_NE(LAPACKE_lsame('1', '1'), 0);
    EXPECT_EQ(LAPACKE_lsame('U', 'L'), 0);
    vox_int version[3];
    LAPACKE_ilaver(version, version + 1, version + 2);
    EXPECT_EQ(version[0] * 10000 + version[1] * 100 + version[2], 31100);
}

} // namespace
