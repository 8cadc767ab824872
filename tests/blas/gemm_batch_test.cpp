// gemm_batch_test.cpp - batches of products: each is what ?gemm computes, in every form and on any
// number of threads; wrong arguments; verbose lines.
#include <gtest/gtest.h>
#include <random>

#include "tests/blas/routine_tables.hpp"
#include "tests/support/child.hpp"
#include "tests/support/reports.hpp"
#include "tests/support/thread_counts.hpp"
#include "tests/support/verbose_lines.hpp"

namespace {

using namespace test;

template <class T>
using c_element = std::conditional_t<vox::is_complex<T>, void, T>;

// A batch, in one place: the arrays of groups, and of addresses in both forms' types.
template <class T>
struct batch {
    CBLAS_LAYOUT layout = CblasColMajor;
    std::string transa, transb;
    std::vector<vox_int> m, n, k, lda, ldb, ldc, size;
    std::vector<T> alpha, beta;
    std::vector<T *> a, b, c;
    vox_int groups = 0;

    // Groups without the addresses of their products.
    void add_group(char op_a, char op_b, vox_int rows, vox_int columns, vox_int inner,
                   vox_int products) {
        const bool by_rows = layout == CblasRowMajor;
        transa += op_a, transb += op_b;
        m.push_back(rows), n.push_back(columns), k.push_back(inner);
        lda.push_back(((op_a == 'N') != by_rows ? rows : inner) + 1);
        ldb.push_back(((op_b == 'N') != by_rows ? inner : columns) + 2);
        ldc.push_back((by_rows ? columns : rows) + 3);
        alpha.push_back(vox::make<T>(2, groups % 2 ? 1 : 0));
        beta.push_back(vox::make<T>(groups % 3 ? 2 : 0, 1));
        size.push_back(products);
        ++groups;
    }
};

template <class T>
struct batch_routine {
    std::string name;
    std::function<void(batch<T> &)> fortran, c;
};

template <class To, class From>
std::vector<To *> converted(const std::vector<From *> &addresses) {
    return {addresses.begin(), addresses.end()};
}

template <class T, class F, class C>
batch_routine<T> batch_routine_of(const char *name, F *fortran, C *c) {
    using element = c_element<T>;
    const auto call_fortran = [=](batch<T> &s) {
        fortran(s.transa.data(), s.transb.data(), s.m.data(), s.n.data(), s.k.data(),
                s.alpha.data(), s.a.data(), s.lda.data(), s.b.data(), s.ldb.data(), s.beta.data(),
                s.c.data(), s.ldc.data(), &s.groups, s.size.data());
    };
    const auto call_c = [=](batch<T> &s) {
        std::vector<CBLAS_TRANSPOSE> transa, transb;
        for (char op : s.transa)
            transa.push_back(CBLAS_TRANSPOSE(c_option(op)));
        for (char op : s.transb)
            transb.push_back(CBLAS_TRANSPOSE(c_option(op)));
        const auto a = converted<element>(s.a), b = converted<element>(s.b),
                   to = converted<element>(s.c);
        c(s.layout, transa.data(), transb.data(), s.m.data(), s.n.data(), s.k.data(),
          s.alpha.data(), a.data(), s.lda.data(), b.data(), s.ldb.data(), s.beta.data(), to.data(),
          s.ldc.data(), s.groups, s.size.data());
    };
    return {name, call_fortran, call_c};
}
#define BATCH(name) batch_routine_of<T>(#name, name##_, cblas_##name)

template <class T>
std::vector<batch_routine<T>> batch_routines() {
    if constexpr (std::is_same_v<T, float>)
        return {BATCH(sgemm_batch)};
    else if constexpr (std::is_same_v<T, double>)
        return {BATCH(dgemm_batch)};
    else if constexpr (std::is_same_v<T, vox_complex_float>)
        return {BATCH(cgemm_batch), BATCH(cgemm3m_batch)};
    else
        return {BATCH(zgemm_batch), BATCH(zgemm3m_batch)};
}

// Small integers: sums are exact in any order.
template <class T>
std::vector<T> integers(size_t count, std::mt19937 &bits) {
    using R = vox::real_of<T>;
    std::vector<T> all(count);
    for (T &x : all)
        x = vox::make<T>(R(bits() % 9) - 4, R(bits() % 9) - 4);
    return all;
}

template <class T>
class GemmBatch : public ::testing::Test {};
TYPED_TEST_SUITE(GemmBatch, element_types);

TYPED_TEST(GemmBatch, IsTheProductsOfItsGroups) {
    using T = TypeParam;
    constexpr size_t room = 40 * 40;
    const thread_counts counts;
    std::mt19937 bits(1);
    const routine<T> &gemm = level3_routines<T>()[0];
    ASSERT_EQ(gemm.name.substr(1), "gemm");
    for (const batch_routine<T> &r : batch_routines<T>())
        for (int form = 0; form < 3; ++form)
            for (int threads : {1, 2, 5}) {
                counts.set(threads);
                batch<T> s;
                s.layout = form == 2 ? CblasRowMajor : CblasColMajor;
                s.add_group('N', 'N', 3, 4, 5, 0);
                s.add_group('N', 'T', 30, 20, 25, 30);
                s.add_group('C', 'N', 2, 7, 1, 1);
                s.add_group('T', 'C', 1, 1, 0, 3);
                s.add_group('T', 'N', 0, 3, 2, 2);
                s.add_group('N', 'N', 17, 33, 9, 20);
                constexpr size_t products = 56;
                std::vector<T> a = integers<T>(products * room, bits), b = a;
                std::vector<T> c = integers<T>(products * room, bits), expected = c;
                for (size_t p = 0, g = 0, end = 0; p < products; ++p) {
                    const size_t at = p * room;
                    s.a.push_back(&a[at]), s.b.push_back(&b[at]), s.c.push_back(&c[at]);
                    while (p >= end + size_t(s.size[g]))
                        end += size_t(s.size[g++]);
                    arguments<T> one;
                    one.layout = s.layout;
                    one.trans = s.transa[g], one.transb = s.transb[g];
                    one.m = s.m[g], one.n = s.n[g], one.k = s.k[g];
                    one.lda = s.lda[g], one.ldb = s.ldb[g], one.ldc = s.ldc[g];
                    one.alpha = s.alpha[g], one.beta = s.beta[g];
                    one.a = &a[at], one.x = &b[at], one.y = &expected[at];
                    gemm.c(one);
                }
                (form == 0 ? r.fortran : r.c)(s);
                EXPECT_TRUE(c == expected) << r.name << " form " << form << ", " << threads;
            }
}

// Bad arguments of the second of three groups, then of two.
TYPED_TEST(GemmBatch, ReportsTheFirstBadArgumentOfTheFirstBadGroup) {
    using T = TypeParam;
    const reports_recorded recorded;
    using spoiler = void (*)(batch<T> &);
    const std::pair<int, spoiler> cases[] = {
        {1, [](batch<T> &s) { s.transa[1] = 'R'; }},
        {2, [](batch<T> &s) { s.transb[1] = ' '; }},
        {3, [](batch<T> &s) { s.m[1] = -1; }},
        {4, [](batch<T> &s) { s.n[1] = -1; }},
        {5, [](batch<T> &s) { s.k[1] = -1; }},
        {8, [](batch<T> &s) { s.lda[1] -= 2; }},
        {10, [](batch<T> &s) { s.ldb[1] -= 3; }},
        {13, [](batch<T> &s) { s.ldc[1] -= 4; }},
        {14, [](batch<T> &s) { s.groups = -1; }},
        {15, [](batch<T> &s) { s.size[1] = -1; }},
        {13, [](batch<T> &s) { s.ldc[1] = 0, s.transa[2] = 'U'; }},
        {3, [](batch<T> &s) { s.size[1] = s.m[1] = -2, s.ldc[2] = 0; }},
    };
    for (const batch_routine<T> &r : batch_routines<T>())
        for (int form = 0; form < 3; ++form)
            for (char op : {'N', 'T'})
                for (const auto &[number, spoil] : cases) {
                    std::vector<T> operands(400, vox::one<T>);
                    batch<T> s;
                    s.layout = form == 2 ? CblasRowMajor : CblasColMajor;
                    s.add_group('N', 'N', 2, 2, 2, 1);
                    s.add_group(op, op, 3, 4, 5, 1);
                    s.add_group('N', 'N', 2, 2, 2, 1);
                    s.a = s.b = s.c = {operands.data(), &operands[100], &operands[200]};
                    spoil(s);
                    reports.clear();
                    (form == 0 ? r.fortran : r.c)(s);
                    const std::string name = form == 0 ? upper_case(r.name) : "cblas_" + r.name;
                    EXPECT_EQ(reports, name + ':' + std::to_string(number + (form != 0)) + ' ');
                    EXPECT_TRUE(operands == std::vector<T>(400, vox::one<T>)) << number;
                    s.layout = CBLAS_LAYOUT(100);
                    reports.clear();
                    r.c(s);
                    EXPECT_EQ(reports, "cblas_" + r.name + ":1 ");
                }
}

// Addresses that are known, since a batch without groups looks at none of them.
template <class T>
T *at(uintptr_t address) {
    return reinterpret_cast<T *>(address);
}
CHILD(empty_batches) {
    const vox_int none = 0, *const sizes = at<vox_int>(2);
    const double *const scalars = at<double>(3);
    const double **const from = at<const double *>(4);
    double **const to = at<double *>(5);
    dgemm_batch_(at<char>(1), at<char>(1), sizes, sizes, sizes, scalars, from, sizes, from, sizes,
                 scalars, to, sizes, &none, sizes);
    const auto *const options = at<CBLAS_TRANSPOSE>(1);
    cblas_dgemm_batch(CblasRowMajor, options, options, sizes, sizes, sizes, scalars, from, sizes,
                      from, sizes, scalars, to, sizes, 0, sizes);
}
TEST(GemmBatchVerbose, ShowsArraysByAddress) {
    const std::string line =
        "DGEMM_BATCH(0x1,0x1,0x2,0x2,0x2,0x3,0x4,0x2,0x4,0x2,0x3,0x5,0x2,0,0x2) ";
    expect_verbose_lines(run_child(empty_batches, {{"VOX_VERBOSE", "1"}}).out, {line, line});
}

} // namespace
