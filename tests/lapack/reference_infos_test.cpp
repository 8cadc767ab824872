// reference_infos_test.cpp - info beside that of the reference LAPACK, on matrices with NaN,
// infinities, zeros and dependent rows at random places; and that every call ends.
//
// It is opened with a scope of its own, so that what it calls is not this library.
#include <cmath>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <limits>

#include "serv/scalar.hpp"
#include "tests/support/element_types.hpp"
#include "tests/support/numbers.hpp"

namespace {

using vox::make;
using vox::real_of;

// Everything by address; more arguments than a routine has do no harm.
using routine = void (*)(const void *, const void *, const void *, const void *, const void *,
                         const void *, const void *, const void *, const void *, const void *,
                         const void *);

struct library {
    void *handle;
    routine get(const std::string &name) const {
        return reinterpret_cast<routine>(dlsym(handle, (name + '_').c_str()));
    }
};
const library own = {RTLD_DEFAULT};
const library &reference() {
    // its BLAS first, or another that the system prefers would do
    static void *const blas = dlopen(VOX_REFERENCE_BLAS, RTLD_NOW | RTLD_DEEPBIND);
    static const library opened = {blas ? dlopen(VOX_REFERENCE_LAPACK, RTLD_NOW | RTLD_DEEPBIND)
                                        : nullptr};
    return opened;
}

template <class T>
constexpr char letter = std::is_same_v<T, float>               ? 's'
                        : std::is_same_v<T, double>            ? 'd'
                        : std::is_same_v<T, vox_complex_float> ? 'c'
                                                               : 'z';

template <class T>
struct operands {
    vox_int n, ld, one = 1, lwork;
    std::vector<T> a, b, work;
    std::vector<vox_int> pivots;
    bool has_infinity = false;
};

// Symmetric with a heavy diagonal, then spoilt.
template <class T>
operands<T> draw(unsigned seed) {
    using R = real_of<T>;
    test::lottery choice(seed);
    const vox_int n = choice.pick({1, 2, 3, 5, 8, 13, 17, 24, 33, 40});
    operands<T> x = {n, n + 1, 1, 64 * n, {}, {}, {}, std::vector<vox_int>(n), false};
    const auto parts = test::random_vector<R>(2 * size_t(x.ld) * n, seed);
    x.a.resize(size_t(x.ld) * n);
    for (vox_int j = 0; j < n; ++j)
        for (vox_int i = 0; i <= j; ++i) {
            const size_t k = i + size_t(j) * x.ld;
            const R im = i == j ? 0 : parts[2 * k + 1];
            x.a[k] = make<T>(i == j ? R(3 * n) : parts[2 * k], im);
            x.a[j + size_t(i) * x.ld] = make<T>(vox::real(x.a[k]), -im);
        }
    x.b.assign(x.ld, make<T>(1));
    x.work.resize(x.lwork);
    const R inf = std::numeric_limits<R>::infinity(), nan = std::numeric_limits<R>::quiet_NaN();
    const auto place = [&] { return choice.number() % n; };
    switch (choice.number() % 4) {
    case 0: // a value, or a pair of them, beside or on the diagonal
        for (unsigned count = 1 + choice.number() % 2; count > 0; --count) {
            const unsigned i = place(), j = choice.number() % 2 ? i : place();
            const R value = choice.pick({nan, inf, -inf, R(0)});
            x.has_infinity |= std::isinf(value);
            x.a[i + size_t(j) * x.ld] = x.a[j + size_t(i) * x.ld] = make<T>(value);
        }
        break;
    case 1: { // a row and column of zeros
        const unsigned k = place();
        for (vox_int i = 0; i < n; ++i)
            x.a[i + size_t(k) * x.ld] = x.a[k + size_t(i) * x.ld] = T{};
        break;
    }
    case 2: { // indefinite
        const unsigned k = place();
        x.a[k + size_t(k) * x.ld] = make<T>(R(-3 * int(n)));
        break;
    }
    default:
        break;
    }
    return x;
}

// Parameters: n, 1 a right-hand side, A and B matrices with l their leading dimension, p pivots, w work
// and its length, o U or L, N no option; info follows them.
constexpr std::pair<const char *, const char *> routines[] = {
    {"getrf", "nnAlp"},  {"getf2", "nnAlp"},   {"getrf2", "nnAlp"},    {"gesv", "n1AlpBl"},
    {"potrf", "onAl"},   {"potf2", "onAl"},    {"potrf2", "onAl"},     {"posv", "on1AlBl"},
    {"potri", "onAl"},   {"trtri", "oNnAl"},   {"trtrs", "oNNn1AlBl"}, {"geqrf", "nnAlBw"},
    {"gelqf", "nnAlBw"}, {"gels", "Nnn1AlBlw"}};

template <class T>
vox_int info_of(const library &from, const char *stem, const char *parameters, char option,
                operands<T> x) {
    vox_int info = 99;
    const routine f = from.get(letter<T> + std::string(stem));
    if (!f)
        return -12345;
    std::vector<const void *> all;
    for (const char *p = parameters; *p; ++p) {
        const void *const address[] = {&x.n,    &x.one,          x.a.data(),    x.b.data(), &x.ld,
                                       &option, x.pivots.data(), x.work.data(), "N"};
        all.push_back(address[std::string_view("n1ABlopwN").find(*p)]);
        if (*p == 'w')
            all.push_back(&x.lwork);
    }
    all.push_back(&info);
    all.resize(11);
    f(all[0], all[1], all[2], all[3], all[4], all[5], all[6], all[7], all[8], all[9], all[10]);
    return info;
}

template <class T>
class Infos : public ::testing::Test {};
TYPED_TEST_SUITE(Infos, test::element_types);

TYPED_TEST(Infos, AreThoseOfTheReference) {
    ASSERT_NE(reference().handle, nullptr) << dlerror();
    for (unsigned seed = 1; seed <= 400; ++seed) {
        const operands<TypeParam> x = draw<TypeParam>(seed);
        for (const auto &[stem, parameters] : routines)
            for (char option : {'U', 'L'}) {
                // scaled by an infinite norm the matrix is zeros and NaN, and its rank an accident
                if (x.has_infinity && std::string(stem) == "gels")
                    continue;
                EXPECT_EQ(info_of(own, stem, parameters, option, x),
                          info_of(reference(), stem, parameters, option, x))
                    << stem << option << " n = " << x.n << " seed " << seed;
            }
    }
}

} // namespace
