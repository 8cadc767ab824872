// gemm_packed_test.cpp - products of factors that are kept packed: what ?gemm computes, on every code
// path, whichever factor is packed; buffers that are none, or not the right ones; no memory.
#include <climits>
#include <gtest/gtest.h>
#include <thread>

#include "tests/blas/level3_reference.hpp"
#include "tests/support/child.hpp"
#include "tests/support/failing_memory.hpp"
#include "tests/support/reports.hpp"
#include "tests/support/thread_counts.hpp"
#include "tests/support/verbose_lines.hpp"
#include "vox/service.h"

namespace {

using namespace test;

// The family of a precision, by the forms that a call has.
template <class T>
struct family;
#define FAMILY(p, P, T)                                                                            \
    template <>                                                                                    \
    struct family<T> {                                                                             \
        static constexpr auto *alloc = p##gemm_alloc_;                                             \
        static constexpr auto *pack = p##gemm_pack_;                                               \
        static constexpr auto *compute = p##gemm_compute_;                                         \
        static constexpr auto *free = p##gemm_free_;                                               \
        static constexpr auto *c_alloc = cblas_##p##gemm_alloc;                                    \
        static constexpr auto *c_pack = cblas_##p##gemm_pack;                                      \
        static constexpr auto *c_compute = cblas_##p##gemm_compute;                                \
        static constexpr auto *c_free = cblas_##p##gemm_free;                                      \
        static constexpr const char *upper = #P "GEMM_";                                           \
        static constexpr const char *c = "cblas_" #p "gemm_";                                      \
    };
VOX_REAL_PRECISIONS(FAMILY)

// A packed factor for as long as it is wanted.
template <class T>
class buffer {
  public:
    buffer(char identifier, vox_int m, vox_int n, vox_int k)
        : data_(family<T>::alloc(&identifier, &m, &n, &k)) {}
    ~buffer() { family<T>::free(data_); }
    buffer(const buffer &) = delete;
    buffer &operator=(const buffer &) = delete;
    T *data() const { return data_; }

  private:
    T *data_;
};

enum packed : unsigned { neither = 0, a_packed = 1, b_packed = 2, both = 3 };

// By either form.
template <class T>
void pack(bool c, CBLAS_LAYOUT layout, char which, char trans, vox_int m, vox_int n, vox_int k,
          T alpha, const T *from, vox_int ld, T *to) {
    if (c)
        family<T>::c_pack(layout, std::toupper(which) == 'B' ? CblasBMatrix : CblasAMatrix,
                          CBLAS_TRANSPOSE(c_option(char(std::toupper(trans)))), m, n, k, alpha,
                          from, ld, to);
    else
        family<T>::pack(&which, &trans, &m, &n, &k, &alpha, from, &ld, to);
}

// ?gemm by a product whose factors are packed as said. alpha goes with one of them.
template <class T>
void compute(arguments<T> &g, unsigned which, bool c, int failing) {
    const buffer<T> a('A', g.m, g.n, g.k), b('b', g.m, g.n, g.k);
    ASSERT_TRUE(a.data() && b.data());
    const T one = 1;
    arguments<T> call = g;
    for (int times = 0; times < 2; ++times) { // a buffer can be packed again
        if (which & a_packed)
            pack(c, g.layout, 'a', g.trans, g.m, g.n, g.k, g.alpha, g.a, g.lda, a.data());
        if (which & b_packed)
            pack(c, g.layout, 'B', g.transb, g.m, g.n, g.k, which & a_packed ? one : g.alpha, g.x,
                 g.ldb, b.data());
    }
    if (which & a_packed)
        call.trans = 'P', call.a = a.data(), call.lda = -1;
    if (which & b_packed)
        call.transb = c ? 'P' : 'p', call.x = b.data(), call.ldb = 0;
    vox_free_buffers();
    memory_requests = 0;
    refused_request = failing;
    if (c)
        form_of<T>(family<T>::c_compute, "otvmnKALBMbCN")(call);
    else
        form_of<T>(family<T>::compute, "tvmnKALBMbCN")(call);
    refused_request = 0;
}

template <class T>
class GemmPacked : public ::testing::Test {
  protected:
    // Gives how many allocations the product made.
    int expect_right(vox_int m, vox_int n, vox_int k, unsigned which, std::optional<plant> p = {},
                     int failing = 0) {
        const routine<T> &gemm = routine_named<T>("gemm");
        drawn_call<T> d = draw(gemm, m, n, k, lots);
        if (which == neither)
            d.a.alpha = 1;
        const bool c = &d.call == &gemm.c;
        const form<T> call = [&](arguments<T> &a) { compute(a, which, c, failing); };
        EXPECT_EQ(trial<T>(gemm, d.a, lots.number(), p).fault(call), "")
            << d << " packed " << which << " without " << failing;
        EXPECT_EQ(reports, "") << d << " packed " << which;
        return memory_requests;
    }
    vox_int edge() {
        return lots.pick({0, 1, 2, 3, 4, 5, 7, 8, 9, 12, 13, 16, 17, 24, 25, 31, 47, 48, 49, 97});
    }
    vox_int block() { return lots.pick({127, 128, 129, 191, 193, 257, 300, 321, 385, 512, 700}); }
    const thread_counts counts;
    const reports_recorded recorded;
    lottery lots{1};
};
TYPED_TEST_SUITE(GemmPacked, real_types);

TYPED_TEST(GemmPacked, IsTheProductWhicheverFactorIsPacked) {
    for (int threads : {1, 3}) {
        this->counts.set(threads);
        for (unsigned which : {neither, a_packed, b_packed, both})
            for (int repeat = 0; repeat < 60; ++repeat) {
                this->expect_right(this->edge(), this->edge(), this->edge(), which);
                this->expect_right(this->edge(), this->edge(), this->block(), which);
                if (repeat % 30 == 0)
                    this->expect_right(this->block(), this->block(), this->block(), which);
            }
    }
}

TYPED_TEST(GemmPacked, DeepProductsOfFewTilesAndManyBlocksAreRightOnThreads) {
    this->counts.set(3);
    for (unsigned which : {a_packed, b_packed, both}) {
        this->expect_right(40, 33, 8000, which);
        this->expect_right(5200, 9, 300, which);
    }
}

TYPED_TEST(GemmPacked, NansGoWhereTheDefinitionSendsThem) {
    for (unsigned which : {a_packed, b_packed, both})
        for (char operand : {'A', 'B', 'C'})
            for (int repeat = 0; repeat < 12; ++repeat)
                this->expect_right(this->edge(), this->edge(), this->edge(), which,
                                   plant{operand, std::numeric_limits<double>::quiet_NaN()});
}

TYPED_TEST(GemmPacked, ResultsAreRightWhicheverAllocationFails) {
    int most = 0;
    for (int threads : {1, 3}) {
        this->counts.set(threads);
        for (unsigned which : {a_packed, b_packed, both}) {
            const int wanted = this->expect_right(130, 101, 390, which);
            for (int failing = 1; failing <= wanted; ++failing)
                this->expect_right(130, 101, 390, which, {}, failing);
            this->expect_right(130, 101, 390, which, {}, every_request);
            most = std::max(most, wanted);
        }
    }
    EXPECT_GT(most, 0) << "no product needs memory";
}

// A factor is multiplied by what comes, on any number of columns, by threads at the same time.
TYPED_TEST(GemmPacked, OneFactorServesManyProducts) {
    using T = TypeParam;
    constexpr vox_int m = 70, k = 90, most = 40;
    const std::vector<T> a = random_vector<T>(m * k, 1), b = random_vector<T>(k * most, 2);
    const buffer<T> kept('A', m, 1, k);
    const T one = 1, zero = 0;
    const vox_int n = 1;
    family<T>::pack("A", "N", &m, &n, &k, &one, a.data(), &m, kept.data());
    std::vector<T> results[2];
    const auto multiply = [&](std::vector<T> &c) {
        c.assign(m * most, T(0));
        for (vox_int j = 0, columns = 1; j < most; j += columns, columns = most - j < 9 ? 1 : 9)
            family<T>::compute("P", "N", &m, &columns, &k, kept.data(), &m, &b[size_t(j * k)], &k,
                               &zero, &c[size_t(j * m)], &m);
    };
    std::thread other(multiply, std::ref(results[1]));
    multiply(results[0]);
    other.join();
    EXPECT_TRUE(results[0] == results[1]);
    for (size_t i = 0; i < m; ++i)
        for (size_t j = 0; j < most; ++j) {
            long double sum = 0, magnitude = 0;
            for (size_t p = 0; p < k; ++p) {
                const long double term = (long double)a[i + p * m] * b[p + j * k];
                sum += term, magnitude += std::fabs(term);
            }
            ASSERT_LE(std::fabs(results[0][i + j * m] - sum), gamma<T>(k + 2) * magnitude);
        }
}

TYPED_TEST(GemmPacked, AllocationIsWithoutAReport) {
    using T = TypeParam;
    const vox_int many = INT_MAX, none = 0;
    EXPECT_EQ(family<T>::alloc("A", &many, &none, &many), nullptr);
    EXPECT_EQ(family<T>::c_alloc(CblasBMatrix, none, many, many), nullptr);
    refused_request = every_request;
    vox_free_buffers();
    EXPECT_EQ(family<T>::alloc("B", &none, &none, &none), nullptr);
    refused_request = 0;
    family<T>::free(nullptr);
    EXPECT_EQ(reports, "");
}

TYPED_TEST(GemmPacked, WhatIsNoBufferOfTheOperandIsReportedAndNothingIsComputed) {
    using T = TypeParam;
    using other = std::conditional_t<std::is_same_v<T, float>, double, float>;
    const T one = 1;
    const vox_int m = 5, n = 7, k = 6, ld = 9;
    const std::vector<T> source(81, T(2));
    std::vector<T> result(81, T(3));
    alignas(4096) static char zeros[4096];
    const buffer<T> a('A', m, n, k), b('B', m, n, k), raw('A', m, n, k), by_rows('A', m, n, k);
    const buffer<T> longer('A', m, n, k + 1), wider('A', m + 1, n, k);
    const buffer<other> foreign('A', m, n, k);
    T *const foreign_data = reinterpret_cast<T *>(foreign.data());
    T *const nothing = reinterpret_cast<T *>(zeros);
    const auto pack = [&](const char *identifier, T *to, vox_int columns = 7) {
        family<T>::pack(identifier, "N", &m, &columns, &k, &one, source.data(), &ld, to);
    };
    pack("A", a.data()), pack("B", b.data());
    family<T>::c_pack(CblasRowMajor, CblasAMatrix, CblasNoTrans, m, n, k, one, source.data(), ld,
                      by_rows.data());
    EXPECT_EQ(reports, "");
    const std::string upper = family<T>::upper, c = family<T>::c;
    const auto expect = [&](const std::string &expected, const char *what) {
        EXPECT_EQ(reports, expected) << what;
        EXPECT_TRUE(result == std::vector<T>(81, T(3))) << what;
        reports.clear();
    };
    for (T *wrong : {static_cast<T *>(nullptr), nothing, foreign_data, longer.data(), wider.data(),
                     a.data() + 1}) {
        pack("A", wrong);
        expect(upper + "PACK:9 ", "pack");
    }
    pack("B", a.data());
    expect(upper + "PACK:9 ", "A's buffer for B");
    for (T *wrong :
         {static_cast<T *>(nullptr), nothing, foreign_data, b.data(), raw.data(), by_rows.data()}) {
        family<T>::compute("P", "P", &m, &n, &k, wrong, &ld, b.data(), &ld, &one, result.data(),
                           &ld);
        expect(upper + "COMPUTE:6 ", "a");
        family<T>::c_compute(CblasColMajor, CblasPacked, CblasPacked, m, n, k, wrong, ld, b.data(),
                             ld, one, result.data(), ld);
        expect(c + "compute:7 ", "a");
    }
    family<T>::compute("P", "p", &m, &n, &k, a.data(), &ld, a.data(), &ld, &one, result.data(),
                       &ld);
    expect(upper + "COMPUTE:8 ", "b");
    family<T>::c_compute(CblasRowMajor, CblasPacked, CblasNoTrans, m, n, k, a.data(), 0,
                         source.data(), ld, one, result.data(), ld);
    expect(c + "compute:7 ", "packed by columns");
    family<T>::free(nothing);
    family<T>::c_free(foreign_data);
    expect(upper + "FREE:1 " + upper + "FREE:1 ", "free");
}

CHILD(logged_calls) {
    const vox_int m = 2, n = 3, k = 4;
    const double values[16] = {}, one = 1;
    double *const data = dgemm_alloc("A", &m, &n, &k);
    DGEMM_PACK("A", "T", &m, &n, &k, &one, values, &k, data);
    dgemm_free_(data);
    std::fprintf(stderr, "%p,%p,4,%p", static_cast<const void *>(&one),
                 static_cast<const void *>(values), static_cast<void *>(data));
}
TEST(GemmPackedVerbose, EveryCallPrintsItsLine) {
    const child_result result = run_child(logged_calls, {{"VOX_VERBOSE", "1"}});
    const std::string &places = result.err, data = places.substr(places.rfind(',') + 1);
    expect_verbose_lines(result.out,
                         {"DGEMM_ALLOC(A,2,3,4) ", "DGEMM_PACK(A,T,2,3,4," + places + ") ",
                          "DGEMM_FREE(" + data + ") "});
}

// The letters, sizes and leading dimensions of ?gemm_alloc and ?gemm_pack; ?gemm_compute's are among
// those of all routines.
TYPED_TEST(GemmPacked, BadArgumentsAreReportedWithTheirNumbers) {
    using T = TypeParam;
    struct values {
        char identifier = 'A', trans = 'N';
        vox_int m = 5, n = 7, k = 6, ld = 5;
    };
    using spoiler = void (*)(values &);
    const std::pair<int, spoiler> cases[] = {
        {1, [](values &v) { v.identifier = 'C', v.m = -1; }},
        {2, [](values &v) { v.trans = 'P', v.n = -1; }},
        {3, [](values &v) { v.m = -1, v.k = -1; }},
        {4, [](values &v) { v.n = -1, v.ld = 0; }},
        {5, [](values &v) { v.k = -1; }},
        {8, [](values &v) { v.ld = 4, v.m = 5; }},
        {8, [](values &v) { v.trans = 't', v.ld = 5; }},
        {8, [](values &v) { v.identifier = 'b', v.ld = 5; }},
        {8, [](values &v) { v.identifier = 'B', v.trans = 'C', v.ld = 6; }},
        {9, [](values &) {}},
    };
    for (const auto &[number, spoil] : cases) {
        values v;
        spoil(v);
        const int alloc_number = number == 1 ? 1 : number > 2 && number < 6 ? number - 1 : 0;
        if (alloc_number) {
            const int id = v.identifier == 'A' ? CblasAMatrix : 0;
            EXPECT_EQ(family<T>::alloc(&v.identifier, &v.m, &v.n, &v.k), nullptr);
            EXPECT_EQ(family<T>::c_alloc(CBLAS_IDENTIFIER(id), v.m, v.n, v.k), nullptr);
            const std::string position = ':' + std::to_string(alloc_number) + ' ';
            EXPECT_EQ(reports,
                      family<T>::upper + ("ALLOC" + position) + family<T>::c + "alloc" + position);
        }
        const auto expect = [&, first = number](bool c, vox_int ld) {
            reports.clear();
            pack<T>(c, CblasRowMajor, v.identifier, v.trans, v.m, v.n, v.k, 1, nullptr, ld,
                    nullptr);
            EXPECT_EQ(reports, (c ? family<T>::c + std::string("pack:")
                                  : family<T>::upper + std::string("PACK:")) +
                                   std::to_string(first + c) + ' ');
        };
        expect(false, v.ld);
        // A row-major factor is as wide as its transpose is high.
        const bool a = v.identifier == 'A', plain = v.trans == 'N';
        const vox_int width = a == plain ? v.k : a ? v.m : v.n;
        if (number > 2)
            expect(true, number == 8 ? width - 1 : std::max(width, v.ld));
        reports.clear();
    }
    const T one = 1;
    family<T>::c_pack(CBLAS_LAYOUT(100), CblasAMatrix, CblasNoTrans, -1, 0, 0, one, nullptr, 0,
                      nullptr);
    EXPECT_EQ(reports, family<T>::c + std::string("pack:1 "));
    reports.clear();
    family<T>::c_pack(CblasColMajor, CBLAS_IDENTIFIER(7), CBLAS_TRANSPOSE(110), 1, 1, 1, one,
                      nullptr, 0, nullptr);
    const std::string c = family<T>::c;
    EXPECT_EQ(reports, c + "pack:2 " + c + "pack:3 " + c + "pack:9 ");
}

} // namespace
