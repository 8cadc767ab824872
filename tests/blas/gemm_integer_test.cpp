// gemm_integer_test.cpp - gemm_s8u8s32 and gemm_s16s16s32 on every code path, beside the definition in
// 64 bits: exact wherever that can be said, on extreme values, in every form; errors.
#include <cmath>
#include <gtest/gtest.h>

#include "tests/blas/calls.hpp"
#include "tests/support/child.hpp"
#include "tests/support/guarded.hpp"
#include "tests/support/numbers.hpp"
#include "tests/support/reports.hpp"
#include "tests/support/thread_counts.hpp"
#include "tests/support/verbose_lines.hpp"
#include "vox/service.h"

namespace {

using namespace test;

struct s8u8 {
    using A = int8_t;
    using B = uint8_t;
    static constexpr const char *name = "gemm_s8u8s32";
    static constexpr auto *fortran = gemm_s8u8s32_;
    static constexpr auto *c = cblas_gemm_s8u8s32;
};
struct s16s16 {
    using A = int16_t;
    using B = int16_t;
    static constexpr const char *name = "gemm_s16s16s32";
    static constexpr auto *fortran = gemm_s16s16s32_;
    static constexpr auto *c = cblas_gemm_s16s16s32;
};

enum form { by_fortran, c_by_columns, c_by_rows };

template <class R>
struct call {
    form how = by_fortran;
    char transa = 'N', transb = 'N', offset = 'F';
    vox_int m = 3, n = 4, k = 5;
    float alpha = 1, beta = 0;
    const typename R::A *a = nullptr;
    const typename R::B *b = nullptr;
    int32_t *c = nullptr;
    typename R::A ao = 0;
    typename R::B bo = 0;
    vox_int lda = 5, ldb = 5, ldc = 5;
    const int32_t *co = nullptr;

    bool by_rows() const { return how == c_by_rows; }
    void operator()() const {
        if (how == by_fortran)
            return R::fortran(&transa, &transb, &offset, &m, &n, &k, &alpha, a, &lda, &ao, b, &ldb,
                              &bo, &beta, c, &ldc, co);
        const CBLAS_OFFSET kind = offset == 'F'   ? CblasFixOffset
                                  : offset == 'C' ? CblasColOffset
                                  : offset == 'R' ? CblasRowOffset
                                                  : CBLAS_OFFSET(5);
        R::c(by_rows() ? CblasRowMajor : CblasColMajor, CBLAS_TRANSPOSE(c_option(transa)),
             CBLAS_TRANSPOSE(c_option(transb)), kind, m, n, k, alpha, a, lda, ao, b, ldb, bo, beta,
             c, ldc, co);
    }
    // Where (i, j) of an operand with this operation is.
    int64_t at(char trans, int64_t ld, int64_t i, int64_t j) const {
        return (trans == 'N') != by_rows() ? i + j * ld : i * ld + j;
    }
};

template <class R>
std::ostream &operator<<(std::ostream &out, const call<R> &g) {
    return out << R::name << " form " << g.how << ' ' << g.transa << g.transb << g.offset << ' '
               << g.m << 'x' << g.n << 'x' << g.k << " alpha " << g.alpha << " beta " << g.beta
               << " offsets " << int(g.ao) << ' ' << int(g.bo);
}

template <class R>
class GemmInteger : public ::testing::Test {
    using A = typename R::A;
    using B = typename R::B;

  protected:
    // The ends of the range as often as anything else.
    template <class S>
    S number() {
        using limits = std::numeric_limits<S>;
        return lots.number() % 2 ? S(lots.number()) : lots.pick({limits::min(), limits::max()});
    }
    template <class S>
    std::vector<S> numbers(int64_t count) {
        std::vector<S> v(size_t(std::max<int64_t>(count, 0)));
        for (S &x : v)
            x = number<S>();
        return v;
    }
    // What is stored as rows x columns of ld, up to the last element.
    static int64_t extent(int64_t lines, int64_t length, int64_t ld) {
        return lines > 0 && length > 0 ? (lines - 1) * ld + length : 0;
    }

    void expect_right(vox_int m, vox_int n, vox_int k) {
        call<R> g;
        g.how = lots.pick({by_fortran, c_by_columns, c_by_rows});
        g.transa = lots.pick({'N', 'T', 'C'}), g.transb = lots.pick({'N', 'T', 'C'});
        g.offset = lots.pick({'F', 'C', 'R'});
        g.m = m, g.n = n, g.k = k;
        g.alpha = lots.pick({1.f, 1.f, 1.f, 0.f, -1.f, 0.5f, 0x1p-7f, -0x1.8p-12f, 3.f, 0.1f});
        g.beta = lots.pick({0.f, 0.f, 1.f, 1.f, -2.f, 0.25f, 0.3f});
        if (lots.number() % 2)
            g.ao = number<A>(), g.bo = number<B>();
        // Lines are what lies side by side in memory.
        const bool plain_a = (g.transa == 'N') != g.by_rows();
        const bool plain_b = (g.transb == 'N') != g.by_rows();
        const vox_int length_a = plain_a ? m : k, length_b = plain_b ? k : n;
        const vox_int length_c = g.by_rows() ? n : m, lines_c = g.by_rows() ? m : n;
        g.lda = std::max(1, length_a) + lots.pick({0, 0, 1, 5});
        g.ldb = std::max(1, length_b) + lots.pick({0, 0, 1, 5});
        g.ldc = std::max(1, length_c) + lots.pick({0, 0, 1, 5});
        const auto a_values = numbers<A>(extent(plain_a ? k : m, length_a, g.lda));
        const auto b_values = numbers<B>(extent(plain_b ? n : k, length_b, g.ldb));
        const auto before = numbers<int32_t>(extent(lines_c, length_c, g.ldc));
        auto offsets = numbers<int32_t>(g.offset == 'F' ? 1 : g.offset == 'C' ? m : n);
        if (lots.number() % 2)
            for (int32_t &x : offsets)
                x = g.offset == 'F' ? 0 : x % 1000;
        guarded<A> a(a_values, lots.pick({edge::back, edge::front}));
        guarded<B> b(b_values, edge::back);
        guarded<int32_t> c(before, edge::back), co(offsets, edge::back);
        a.freeze(), b.freeze(), co.freeze();
        const bool read = g.alpha != 0;
        g.a = read ? a.data() : nullptr, g.b = read ? b.data() : nullptr;
        g.c = c.data(), g.co = co.data();
        g();
        // Rows of op(A) + ao and columns of op(B) + bo.
        std::vector<int32_t> rows, columns;
        for (int64_t i = 0; i < m && read; ++i)
            for (int64_t p = 0; p < k; ++p)
                rows.push_back(a_values[size_t(g.at(g.transa, g.lda, i, p))] + g.ao);
        for (int64_t j = 0; j < n && read; ++j)
            for (int64_t p = 0; p < k; ++p)
                columns.push_back(b_values[size_t(g.at(g.transb, g.ldb, p, j))] + g.bo);
        std::vector<int32_t> expected = before;
        for (int64_t i = 0; i < m; ++i)
            for (int64_t j = 0; j < n; ++j) {
                int64_t sum = 0;
                for (int64_t p = 0; p < k && read; ++p)
                    sum += int64_t(rows[size_t(i * k + p)]) * columns[size_t(j * k + p)];
                const size_t at = size_t(g.at('N', g.ldc, i, j));
                const int32_t offset =
                    offsets[g.offset == 'F' ? 0 : size_t(g.offset == 'C' ? i : j)];
                if (!is_result(c.data()[at], g, sum, before[at], offset)) {
                    ADD_FAILURE() << g << " at " << i << ' ' << j << ": " << c.data()[at];
                    return;
                }
                expected[at] = c.data()[at];
            }
        EXPECT_TRUE(std::equal(expected.begin(), expected.end(), c.data())) << g << " canaries";
        EXPECT_EQ(reports, "") << g;
    }

    // Rounded once if everything before is exact in double precision, which the choices of alpha and beta
    // but the last ones see to; those add three roundings.
    static bool is_result(int32_t got, const call<R> &g, int64_t sum, int32_t old, int32_t offset) {
        const long double scaled = (long double)g.alpha * int32_t(uint32_t(uint64_t(sum)));
        const long double kept = g.beta == 0 ? 0 : (long double)g.beta * old;
        const long double exact = scaled + kept + offset;
        const bool roughly = g.alpha == 0.1f || g.beta == 0.3f;
        const long double magnitude = std::fabs(scaled) + std::fabs(kept) + std::fabs(offset);
        const long double slack = roughly ? gamma<double>(4) * magnitude : 0;
        const auto rounded = [](long double x) {
            return std::llrint(std::clamp<long double>(x, INT32_MIN, INT32_MAX));
        };
        return got >= rounded(exact - slack) && got <= rounded(exact + slack);
    }
    vox_int edge_size() {
        return lots.pick({0, 1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 32, 33, 47, 48, 49, 65, 97});
    }
    const thread_counts counts;
    const reports_recorded recorded;
    lottery lots{1};
};
using types = ::testing::Types<s8u8, s16s16>;
TYPED_TEST_SUITE(GemmInteger, types);

TYPED_TEST(GemmInteger, IsExactAtTheEdgesOfRegisterBlocks) {
    for (int repeat = 0; repeat < 1500; ++repeat)
        this->expect_right(this->edge_size(), this->edge_size(), this->edge_size());
}

TYPED_TEST(GemmInteger, IsExactAtTheEdgesOfBlocksAndOnThreads) {
    constexpr vox_int shapes[][3] = {{1010, 9, 40}, {17, 490, 33}, {90, 70, 768},   {50, 65, 769},
                                     {7, 9, 1025},  {970, 485, 6}, {100, 100, 1300}};
    for (int threads : {1, 3, 4}) {
        this->counts.set(threads);
        for (const auto &[m, n, k] : shapes)
            for (int repeat = 0; repeat < 3; ++repeat)
                this->expect_right(m, n, k);
    }
    this->expect_right(965, 483, 770);
}

TYPED_TEST(GemmInteger, EachBadArgumentIsReportedWithItsNumber) {
    using R = TypeParam;
    using spoiler = void (*)(call<R> &);
    const std::pair<int, spoiler> cases[] = {
        {1, [](call<R> &g) { g.transa = 'R', g.m = -1; }},
        {2, [](call<R> &g) { g.transb = ' ', g.m = -1; }},
        {3, [](call<R> &g) { g.offset = 'N', g.m = -1; }},
        {4, [](call<R> &g) { g.m = -1, g.n = -1; }},
        {5, [](call<R> &g) { g.n = -1, g.k = -1; }},
        {6, [](call<R> &g) { g.k = -1, g.lda = 0; }},
        {9, [](call<R> &g) { g.lda = (g.transa == 'N') != g.by_rows() ? g.m - 1 : g.k - 1; }},
        {12, [](call<R> &g) { g.ldb = (g.transb == 'N') != g.by_rows() ? g.k - 1 : g.n - 1; }},
        {16, [](call<R> &g) { g.ldc = (g.by_rows() ? g.n : g.m) - 1; }},
    };
    for (form how : {by_fortran, c_by_columns, c_by_rows})
        for (char op : {'N', 'T'})
            for (const auto &[number, spoil] : cases) {
                call<R> g;
                g.how = how;
                g.transa = g.transb = op;
                spoil(g);
                reports.clear();
                g(); // operands are null
                const std::string name =
                    how == by_fortran ? upper_case(R::name) : std::string("cblas_") + R::name;
                const auto report = [&](int parameter) {
                    return name + ':' + std::to_string(parameter + (how != by_fortran)) + ' ';
                };
                const bool goes_on = number < 4 && how != by_fortran; // after a bad option
                const std::string expected = report(number) + (goes_on ? report(4) : "");
                EXPECT_EQ(reports, expected) << g;
            }
    reports.clear();
    R::c(CBLAS_LAYOUT(100), CblasNoTrans, CblasNoTrans, CblasFixOffset, -1, 0, 0, 1, nullptr, 0, 0,
         nullptr, 0, 0, 0, nullptr, 0, nullptr);
    EXPECT_EQ(reports, std::string("cblas_") + R::name + ":1 ");
}

CHILD(logged_calls) {
    const int32_t none = 0;
    call<s8u8> g;
    g.m = 0, g.co = &none;
    g();
    g.m = 1, g.n = 0, g.offset = 'R';
    g();
    call<s16s16> h;
    int32_t c[20] = {};
    h.c = c, h.co = c, h.alpha = 0, h.how = c_by_rows, h.transa = 'T', h.offset = 'C';
    h();
    call<s8u8> mixed;
    mixed.c = c, mixed.co = c, mixed.alpha = 0, mixed.how = c_by_rows, mixed.transb = 'T';
    mixed();
}
TEST(GemmIntegerVerbose, PrintsItsLine) {
    expect_verbose_lines(run_child(logged_calls, {{"VOX_VERBOSE", "1"}}).out,
                         {"GEMM_S8U8S32(N,N,F,0,4,5,0x", "GEMM_S8U8S32(N,N,R,1,0,5,0x",
                          "GEMM_S16S16S32(N,T,R,4,3,5,0x", "GEMM_S8U8S32(T,N,F,4,3,5,0x"});
}

} // namespace
