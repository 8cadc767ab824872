// lapacke_test.cpp - the C forms, routine by routine: both layouts give the same, and bad arguments,
// NaN and missing memory are answered as documented.
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <string>

#include "serv/scalar.hpp"
#include "tests/support/child.hpp"
#include "tests/support/failing_memory.hpp"
#include "tests/support/numbers.hpp"
#include "vox/lapacke.h"

namespace {

using vox::is_complex;
using vox::make;
using vox::real_of;

template <class T>
struct forms;
#define FORMS(p, Q, E)                                                                             \
    template <>                                                                                    \
    struct forms<E> {                                                                              \
        static constexpr const char *prefix = "LAPACKE_" #p;                                       \
        static constexpr auto getrf = LAPACKE_##p##getrf;                                          \
        static constexpr auto getrs = LAPACKE_##p##getrs;                                          \
        static constexpr auto gesv = LAPACKE_##p##gesv;                                            \
        static constexpr auto getri = LAPACKE_##p##getri;                                          \
        static constexpr auto gecon = LAPACKE_##p##gecon;                                          \
        static constexpr auto laswp = LAPACKE_##p##laswp;                                          \
        static constexpr auto potrf = LAPACKE_##p##potrf;                                          \
        static constexpr auto potrs = LAPACKE_##p##potrs;                                          \
        static constexpr auto posv = LAPACKE_##p##posv;                                            \
        static constexpr auto potri = LAPACKE_##p##potri;                                          \
        static constexpr auto pocon = LAPACKE_##p##pocon;                                          \
        static constexpr auto lauum = LAPACKE_##p##lauum;                                          \
        static constexpr auto trtri = LAPACKE_##p##trtri;                                          \
        static constexpr auto trtrs = LAPACKE_##p##trtrs;                                          \
        static constexpr auto trcon = LAPACKE_##p##trcon;                                          \
        static constexpr auto geqrf = LAPACKE_##p##geqrf;                                          \
        static constexpr auto gelqf = LAPACKE_##p##gelqf;                                          \
        static constexpr auto geqp3 = LAPACKE_##p##geqp3;                                          \
        static constexpr auto orgqr = LAPACKE_##Q##gqr;                                            \
        static constexpr auto orglq = LAPACKE_##Q##glq;                                            \
        static constexpr auto ormqr = LAPACKE_##Q##mqr;                                            \
        static constexpr auto ormlq = LAPACKE_##Q##mlq;                                            \
        static constexpr auto gels = LAPACKE_##p##gels;                                            \
        static constexpr auto larft = LAPACKE_##p##larft;                                          \
        static constexpr auto larfb = LAPACKE_##p##larfb;                                          \
        static constexpr auto lange = LAPACKE_##p##lange;                                          \
        static constexpr auto lansy = LAPACKE_##p##lansy;                                          \
        static constexpr auto lantr = LAPACKE_##p##lantr;                                          \
        static constexpr auto lacpy = LAPACKE_##p##lacpy;                                          \
        static constexpr auto laset = LAPACKE_##p##laset;                                          \
        static constexpr auto lascl = LAPACKE_##p##lascl;                                          \
    };
FORMS(s, sor, float)
FORMS(d, dor, double)
FORMS(c, cun, vox_complex_float)
FORMS(z, zun, vox_complex_double)

// A matrix of a call, by columns in `values`; what the call gets lies in `memory`, by rows or columns.
template <class T>
struct operand {
    int position; // its parameter number in the C form
    vox_int rows, cols;
    bool checked = true; // for NaN
    std::vector<T> values, memory;
    vox_int ld = 0;

    operand(int number, vox_int m, vox_int n, bool nan_checked = true)
        : position(number), rows(m), cols(n), checked(nan_checked), values(size_t(m) * n) {}
    T *data() { return memory.data(); }
    size_t place(int layout, vox_int i, vox_int j) const {
        return layout == LAPACK_ROW_MAJOR ? size_t(i) * ld + j : i + size_t(j) * ld;
    }
    void lay_out(int layout) {
        ld = layout == LAPACK_ROW_MAJOR ? cols + 2 : rows;
        memory.assign(size_t(ld) * (layout == LAPACK_ROW_MAJOR ? rows : cols), make<T>(-77));
        for (vox_int j = 0; j < cols; ++j)
            for (vox_int i = 0; i < rows; ++i)
                memory[place(layout, i, j)] = values[i + size_t(j) * rows];
    }
    std::vector<T> result(int layout) const {
        std::vector<T> all;
        for (vox_int j = 0; j < cols; ++j)
            for (vox_int i = 0; i < rows; ++i)
                all.push_back(memory[place(layout, i, j)]);
        return all;
    }
};

// What a routine is called with; scalars holds results and vectors besides the matrices.
template <class T>
struct arguments {
    std::vector<operand<T>> m;
    std::vector<vox_int> pivots = std::vector<vox_int>(64, 0);
    std::vector<T> vector = std::vector<T>(64, make<T>(0.5));
    real_of<T> number = 0;
};

template <class T>
struct routine {
    std::string name;
    std::vector<operand<T>> matrices;
    vox_int (*call)(int layout, arguments<T> &x);
    int requests = 0; // for workspace, before the copies of a row-major call
};

constexpr vox_int n = 19, nrhs = 3, tall = 23;

// getrf's factors and such are only data here: any well-scaled matrix with a heavy diagonal will do.
template <class T>
const std::vector<routine<T>> &routines() {
    using f = forms<T>;
    using x = arguments<T>;
    static constexpr char adjoint = is_complex<T> ? 'C' : 'T';
    static const std::vector<routine<T>> all = {
        {"getrf",
         {{4, tall, n}},
         [](int l, x &a) {
             return f::getrf(l, tall, n, a.m[0].data(), a.m[0].ld, a.pivots.data());
         }},
        {"getrs",
         {{5, n, n}, {8, n, nrhs}},
         [](int l, x &a) {
             for (vox_int i = 0; i < n; ++i)
                 a.pivots[i] = i + 1 + (n - 1 - i) / 2;
             return f::getrs(l, 'T', n, nrhs, a.m[0].data(), a.m[0].ld, a.pivots.data(),
                             a.m[1].data(), a.m[1].ld);
         }},
        {"gesv",
         {{4, n, n}, {7, n, nrhs}},
         [](int l, x &a) {
             return f::gesv(l, n, nrhs, a.m[0].data(), a.m[0].ld, a.pivots.data(), a.m[1].data(),
                            a.m[1].ld);
         }},
        {"getri",
         {{3, n, n}},
         [](int l, x &a) {
             for (vox_int i = 0; i < n; ++i)
                 a.pivots[i] = i + 1 + (n - 1 - i) / 2;
             return f::getri(l, n, a.m[0].data(), a.m[0].ld, a.pivots.data());
         },
         1},
        {"gecon",
         {{4, n, n}},
         [](int l, x &a) { return f::gecon(l, '1', n, a.m[0].data(), a.m[0].ld, 30, &a.number); },
         2},
        {"laswp",
         {{3, n, n, true}},
         [](int l, x &a) {
             for (vox_int i = 0; i < 5; ++i)
                 a.pivots[i] = n - i;
             return f::laswp(l, n, a.m[0].data(), a.m[0].ld, 1, 5, a.pivots.data(), 1);
         }},
        {"potrf",
         {{4, n, n}},
         [](int l, x &a) { return f::potrf(l, 'U', n, a.m[0].data(), a.m[0].ld); }},
        {"potrs",
         {{5, n, n}, {7, n, nrhs}},
         [](int l, x &a) {
             return f::potrs(l, 'U', n, nrhs, a.m[0].data(), a.m[0].ld, a.m[1].data(), a.m[1].ld);
         }},
        {"posv",
         {{5, n, n}, {7, n, nrhs}},
         [](int l, x &a) {
             return f::posv(l, 'U', n, nrhs, a.m[0].data(), a.m[0].ld, a.m[1].data(), a.m[1].ld);
         }},
        {"potri",
         {{4, n, n}},
         [](int l, x &a) { return f::potri(l, 'U', n, a.m[0].data(), a.m[0].ld); }},
        {"pocon",
         {{4, n, n}},
         [](int l, x &a) { return f::pocon(l, 'U', n, a.m[0].data(), a.m[0].ld, 30, &a.number); },
         2},
        {"lauum",
         {{4, n, n}},
         [](int l, x &a) { return f::lauum(l, 'U', n, a.m[0].data(), a.m[0].ld); }},
        {"trtri",
         {{5, n, n}},
         [](int l, x &a) { return f::trtri(l, 'U', 'N', n, a.m[0].data(), a.m[0].ld); }},
        {"trtrs",
         {{7, n, n}, {9, n, nrhs}},
         [](int l, x &a) {
             return f::trtrs(l, 'U', 'N', 'N', n, nrhs, a.m[0].data(), a.m[0].ld, a.m[1].data(),
                             a.m[1].ld);
         }},
        {"trcon",
         {{6, n, n}},
         [](int l, x &a) {
             return f::trcon(l, 'I', 'U', 'N', n, a.m[0].data(), a.m[0].ld, &a.number);
         },
         2},
        {"geqrf",
         {{4, tall, n}},
         [](int l, x &a) {
             return f::geqrf(l, tall, n, a.m[0].data(), a.m[0].ld, a.vector.data());
         },
         1},
        {"gelqf",
         {{4, tall, n}},
         [](int l, x &a) {
             return f::gelqf(l, tall, n, a.m[0].data(), a.m[0].ld, a.vector.data());
         },
         1},
        {"geqp3",
         {{4, tall, n}},
         [](int l, x &a) {
             return f::geqp3(l, tall, n, a.m[0].data(), a.m[0].ld, a.pivots.data(),
                             a.vector.data());
         },
         is_complex<T> ? 2 : 1},
        {is_complex<T> ? "ungqr" : "orgqr",
         {{5, tall, n}},
         [](int l, x &a) {
             return f::orgqr(l, tall, n, n, a.m[0].data(), a.m[0].ld, a.vector.data());
         },
         1},
        {is_complex<T> ? "unglq" : "orglq",
         {{5, n, tall}},
         [](int l, x &a) {
             return f::orglq(l, n, tall, n, a.m[0].data(), a.m[0].ld, a.vector.data());
         },
         1},
        {is_complex<T> ? "unmqr" : "ormqr",
         {{7, tall, n}, {10, tall, nrhs}},
         [](int l, x &a) {
             return f::ormqr(l, 'L', adjoint, tall, nrhs, n, a.m[0].data(), a.m[0].ld,
                             a.vector.data(), a.m[1].data(), a.m[1].ld);
         },
         1},
        {is_complex<T> ? "unmlq" : "ormlq",
         {{7, n, tall}, {10, nrhs, tall}},
         [](int l, x &a) {
             return f::ormlq(l, 'R', adjoint, nrhs, tall, n, a.m[0].data(), a.m[0].ld,
                             a.vector.data(), a.m[1].data(), a.m[1].ld);
         },
         1},
        {"gels",
         {{6, tall, n}, {8, tall, nrhs}},
         [](int l, x &a) {
             return f::gels(l, 'N', tall, n, nrhs, a.m[0].data(), a.m[0].ld, a.m[1].data(),
                            a.m[1].ld);
         },
         1},
        {"larft",
         {{6, tall, n}, {9, n, n, false}},
         [](int l, x &a) {
             return f::larft(l, 'F', 'C', tall, n, a.m[0].data(), a.m[0].ld, a.vector.data(),
                             a.m[1].data(), a.m[1].ld);
         }},
        {"larfb",
         {{9, tall, n}, {11, n, n}, {13, tall, nrhs}},
         [](int l, x &a) {
             return f::larfb(l, 'L', 'N', 'F', 'C', tall, nrhs, n, a.m[0].data(), a.m[0].ld,
                             a.m[1].data(), a.m[1].ld, a.m[2].data(), a.m[2].ld);
         },
         1},
        {"lange",
         {{5, tall, n}},
         [](int l, x &a) {
             a.number = f::lange(l, 'I', tall, n, a.m[0].data(), a.m[0].ld);
             return a.number < 0 ? vox_int(a.number) : 0;
         },
         1},
        {"lansy",
         {{5, n, n}},
         [](int l, x &a) {
             a.number = f::lansy(l, 'I', 'U', n, a.m[0].data(), a.m[0].ld);
             return a.number < 0 ? vox_int(a.number) : 0;
         },
         1},
        {"lantr",
         {{7, tall, n}},
         [](int l, x &a) {
             a.number = f::lantr(l, 'I', 'U', 'N', tall, n, a.m[0].data(), a.m[0].ld);
             return a.number < 0 ? vox_int(a.number) : 0;
         },
         1},
        {"lacpy",
         {{5, tall, n}, {7, tall, n, false}},
         [](int l, x &a) {
             return f::lacpy(l, 'U', tall, n, a.m[0].data(), a.m[0].ld, a.m[1].data(), a.m[1].ld);
         }},
        {"laset",
         {{7, tall, n, false}},
         [](int l, x &a) {
             return f::laset(l, 'L', tall, n, make<T>(2), make<T>(3), a.m[0].data(), a.m[0].ld);
         }},
        {"lascl",
         {{9, tall, n}},
         [](int l, x &a) {
             return f::lascl(l, 'G', 0, 0, 3, 2, tall, n, a.m[0].data(), a.m[0].ld);
         }},
    };
    return all;
}

// Operands that every routine can work on: symmetric where square, with a heavy diagonal.
template <class T>
arguments<T> fill(const routine<T> &r, int layout) {
    arguments<T> a;
    a.m = r.matrices;
    unsigned seed = 1;
    for (operand<T> &m : a.m) {
        const auto parts = test::random_vector<real_of<T>>(2 * m.values.size(), ++seed);
        for (vox_int j = 0; j < m.cols; ++j)
            for (vox_int i = 0; i < m.rows; ++i) {
                const size_t k = std::min(i, j) + size_t(std::max(i, j)) * m.rows;
                const size_t from = m.rows == m.cols ? k : i + size_t(j) * m.rows;
                m.values[i + size_t(j) * m.rows] =
                    i == j ? make<T>(25 + parts[2 * from])
                           : make<T>(parts[2 * from], (i < j ? 1 : -1) * parts[2 * from + 1]);
            }
        m.lay_out(layout);
    }
    return a;
}

template <class T>
void expect_same(const std::vector<T> &a, const std::vector<T> &b, const std::string &what) {
    ASSERT_EQ(a.size(), b.size());
    EXPECT_EQ(std::memcmp(a.data(), b.data(), a.size() * sizeof(T)), 0) << what;
}

template <class T>
class LapackeForms : public ::testing::Test {
  protected:
    void SetUp() override {
        LAPACKE_set_nancheck(1);
        vox_thread_free_buffers();
    }
};
using types = ::testing::Types<float, double, vox_complex_float, vox_complex_double>;
TYPED_TEST_SUITE(LapackeForms, types);

TYPED_TEST(LapackeForms, LayoutsGiveTheSame) {
    using T = TypeParam;
    for (const routine<T> &r : routines<T>()) {
        arguments<T> columns = fill(r, LAPACK_COL_MAJOR), rows = fill(r, LAPACK_ROW_MAJOR);
        EXPECT_EQ(r.call(LAPACK_COL_MAJOR, columns), 0) << r.name;
        EXPECT_EQ(r.call(LAPACK_ROW_MAJOR, rows), 0) << r.name;
        for (size_t i = 0; i < r.matrices.size(); ++i)
            expect_same(columns.m[i].result(LAPACK_COL_MAJOR), rows.m[i].result(LAPACK_ROW_MAJOR),
                        r.name);
        EXPECT_EQ(columns.pivots, rows.pivots) << r.name;
        expect_same(columns.vector, rows.vector, r.name);
        EXPECT_EQ(columns.number, rows.number) << r.name;
        for (const operand<T> &m : rows.m) // between the rows
            for (vox_int i = 0; i < m.rows; ++i)
                for (vox_int j = m.cols; j < m.ld; ++j)
                    EXPECT_EQ(vox::real(m.memory[size_t(i) * m.ld + j]), -77) << r.name;
    }
}

// The result and the line that is printed; nothing is touched.
TYPED_TEST(LapackeForms, WrongLayoutsAndLeadingDimensions) {
    using T = TypeParam;
    for (const routine<T> &r : routines<T>()) {
        const std::string name = forms<T>::prefix + r.name;
        arguments<T> a = fill(r, LAPACK_ROW_MAJOR);
        const auto untouched = a;
        ::testing::internal::CaptureStdout();
        EXPECT_EQ(r.call(100, a), -1) << r.name;
        EXPECT_EQ(::testing::internal::GetCapturedStdout(), "Wrong parameter 1 in " + name + "\n");
        for (size_t i = 0; i < a.m.size(); ++i) {
            const vox_int ld = a.m[i].ld, number = a.m[i].position + 1;
            a.m[i].ld = a.m[i].cols - 1;
            LAPACKE_set_nancheck(0); // rows that overlap are no concern of its
            ::testing::internal::CaptureStdout();
            EXPECT_EQ(r.call(LAPACK_ROW_MAJOR, a), -number) << r.name;
            EXPECT_EQ(::testing::internal::GetCapturedStdout(),
                      "Wrong parameter " + std::to_string(number) + " in " + name + "_work\n");
            LAPACKE_set_nancheck(1);
            a.m[i].ld = ld;
            expect_same(a.m[i].memory, untouched.m[i].memory, r.name);
        }
    }
}

TYPED_TEST(LapackeForms, NaNIsFoundInEveryInput) {
    using T = TypeParam;
    const auto nan = std::numeric_limits<real_of<T>>::quiet_NaN();
    for (const routine<T> &r : routines<T>())
        for (int layout : {LAPACK_ROW_MAJOR, LAPACK_COL_MAJOR})
            for (size_t i = 0; i < r.matrices.size(); ++i) {
                arguments<T> a = fill(r, layout);
                // an element of the lower triangle where the vectors of reflectors are, else the upper
                const bool reflectors = r.name == "larft" || (r.name == "larfb" && i == 0);
                const size_t at =
                    reflectors ? a.m[i].place(layout, 2, 1) : a.m[i].place(layout, 1, 2);
                a.m[i].memory[at] = make<T>(is_complex<T> ? 1 : nan, nan);
                ::testing::internal::CaptureStdout();
                const vox_int expected = a.m[i].checked ? -a.m[i].position : 0;
                EXPECT_EQ(r.call(layout, a), expected) << r.name << i;
                EXPECT_EQ(::testing::internal::GetCapturedStdout(), "") << r.name;
            }
}

// Each request for memory fails in turn: those for workspace come first, then those for copies.
TYPED_TEST(LapackeForms, WithoutMemoryTheyReportAndTouchNothing) {
    using T = TypeParam;
    for (const routine<T> &r : routines<T>()) {
        const int copies = int(r.matrices.size());
        for (int request = 1; request <= r.requests + copies; ++request) {
            arguments<T> a = fill(r, LAPACK_ROW_MAJOR);
            const auto untouched = a;
            vox_thread_free_buffers();
            test::memory_requests = 0;
            test::refused_request = request;
            ::testing::internal::CaptureStdout();
            const vox_int info = r.call(LAPACK_ROW_MAJOR, a);
            const std::string text = ::testing::internal::GetCapturedStdout();
            test::refused_request = 0;
            const bool work = request <= r.requests;
            EXPECT_EQ(info, work ? LAPACK_WORK_MEMORY_ERROR : LAPACK_TRANSPOSE_MEMORY_ERROR)
                << r.name << request;
            EXPECT_EQ(text, (work ? "Not enough memory to allocate work array in "
                                  : "Not enough memory to transpose matrix in ") +
                                (forms<T>::prefix + r.name) + (work ? "\n" : "_work\n"));
            for (size_t i = 0; i < a.m.size(); ++i)
                expect_same(a.m[i].memory, untouched.m[i].memory, r.name);
        }
    }
}

// More than 16 pivots have a list of their own inside.
TEST(LapackeErrors, WithoutMemoryForPivotsNothingIsTouched) {
    std::vector<double> a(n * n, 1), untouched = a;
    vox_int pivots[n] = {77};
    for (int layout : {LAPACK_COL_MAJOR, LAPACK_ROW_MAJOR}) {
        vox_thread_free_buffers();
        test::memory_requests = 0;
        test::refused_request = layout == LAPACK_ROW_MAJOR ? 2 : 1;
        ::testing::internal::CaptureStdout();
        const vox_int info = LAPACKE_dgetrf(layout, n, n, a.data(), n, pivots);
        const std::string text = ::testing::internal::GetCapturedStdout();
        test::refused_request = 0;
        EXPECT_EQ(info, LAPACK_WORK_MEMORY_ERROR);
        EXPECT_NE(text.find("DGETRF"), std::string::npos) << text;
        EXPECT_EQ(a, untouched);
        EXPECT_EQ(pivots[0], 77);
    }
}

// Errors that the Fortran form finds: its number and one for the layout.
TEST(LapackeErrors, NumbersCountTheLayout) {
    double a[4] = {1, 0, 0, 1}, b[4] = {1, 1, 1, 1}; // b: 2 x 1, rows 2 apart
    vox_int pivots[2];
    for (int layout : {LAPACK_ROW_MAJOR, LAPACK_COL_MAJOR}) {
        ::testing::internal::CaptureStdout();
        EXPECT_EQ(LAPACKE_dgetrs(layout, 'X', 2, 1, a, 2, pivots, b, 2), -2);
        EXPECT_EQ(LAPACKE_dgetrf(layout, -1, 2, a, 2, pivots), -2);
        EXPECT_EQ(LAPACKE_dpotrf(layout, 'Q', 2, a, 2), -2);
        EXPECT_EQ(LAPACKE_dgeqrf_work(layout, 2, 2, a, 2, b, a, 1), -8);
        EXPECT_EQ(LAPACKE_dgesv(layout, 2, -1, a, 2, pivots, b, 2), -3);
        ::testing::internal::GetCapturedStdout();
    }
}

TEST(LapackeErrors, WorkspaceIsAskedFor) {
    std::vector<double> a(100 * 60), tau(60);
    for (int layout : {LAPACK_ROW_MAJOR, LAPACK_COL_MAJOR}) {
        double best = 0;
        const vox_int ld = layout == LAPACK_ROW_MAJOR ? 60 : 100;
        EXPECT_EQ(LAPACKE_dgeqrf_work(layout, 100, 60, a.data(), ld, tau.data(), &best, -1), 0);
        EXPECT_GE(best, 60);
    }
}

TEST(LapackeEmpty, RowMajorTakesNoElements) {
    double a[1] = {5};
    vox_int pivots[1] = {7};
    EXPECT_EQ(LAPACKE_dgetrf(LAPACK_ROW_MAJOR, 0, 3, a, 3, pivots), 0);
    EXPECT_EQ(LAPACKE_dgetrf(LAPACK_ROW_MAJOR, 3, 0, a, 0, pivots), 0);
    EXPECT_EQ(a[0], 5);
    EXPECT_EQ(pivots[0], 7);
}

// Infinities of both signs add up to NaN, but are none.
TEST(LapackeEmpty, InfinitiesAreNoNaN) {
    const double inf = std::numeric_limits<double>::infinity();
    double a[16] = {inf, -inf, 1, 1, 1, 2, 3, 4, 1, 1, 5, 1, 1, 1, 1, 6};
    vox_int pivots[4];
    EXPECT_GE(LAPACKE_dgetrf(LAPACK_ROW_MAJOR, 4, 4, a, 4, pivots), 0);
}

} // namespace
