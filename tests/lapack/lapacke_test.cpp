// lapacke_test.cpp - the C forms, routine by routine: both layouts give the same, and bad arguments,
// NaN and missing memory are answered as documented.
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <string>

#include "tests/lapack/lapacke_table.hpp"
#include "tests/support/failing_memory.hpp"

namespace {

using namespace test::lapacke;

template <class T>
void expect_same(const std::vector<T> &a, const std::vector<T> &b, const std::string &what) {
    ASSERT_EQ(a.size(), b.size());
    EXPECT_EQ(std::memcmp(a.data(), b.data(), a.size() * sizeof(T)), 0) << what;
}

// What a call gives and prints.
template <class Call>
void expect_call(const Call &call, vox_int info, const std::string &text) {
    ::testing::internal::CaptureStdout();
    const vox_int got = call();
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), text);
    EXPECT_EQ(got, info) << text;
}

template <class T>
class LapackeForms : public ::testing::Test {
  protected:
    void SetUp() override {
        LAPACKE_set_nancheck(1);
        vox_thread_free_buffers();
    }
};
TYPED_TEST_SUITE(LapackeForms, test::element_types);

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
        arguments<T> a = fill(r, LAPACK_ROW_MAJOR);
        const auto untouched = a;
        expect_call([&] { return r.call(100, a); }, -1, "Wrong parameter 1 in " + r.c_name + "\n");
        for (size_t i = 0; i < a.m.size(); ++i) {
            const vox_int ld = a.m[i].ld, number = a.m[i].position + 1;
            a.m[i].ld = a.m[i].cols - 1;
            LAPACKE_set_nancheck(0); // rows that overlap are no concern of its
            expect_call([&] { return r.call(LAPACK_ROW_MAJOR, a); }, -number,
                        "Wrong parameter " + std::to_string(number) + " in " + r.c_name +
                            "_work\n");
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
                expect_call([&] { return r.call(layout, a); },
                            a.m[i].checked ? -a.m[i].position : 0, "");
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
            const bool work = request <= r.requests;
            expect_call([&] { return r.call(LAPACK_ROW_MAJOR, a); },
                        work ? LAPACK_WORK_MEMORY_ERROR : LAPACK_TRANSPOSE_MEMORY_ERROR,
                        (work ? "Not enough memory to allocate work array in "
                              : "Not enough memory to transpose matrix in ") +
                            r.c_name + (work ? "\n" : "_work\n"));
            test::refused_request = 0;
            for (size_t i = 0; i < a.m.size(); ++i)
                expect_same(a.m[i].memory, untouched.m[i].memory, r.name);
        }
    }
}

// More than 16 pivots have a list of their own inside.
TEST(LapackeErrors, WithoutMemoryForPivotsNothingIsTouched) {
    constexpr vox_int n = 19;
    std::vector<double> a(n * n, 1), untouched = a;
    vox_int pivots[n] = {77};
    for (int layout : {LAPACK_COL_MAJOR, LAPACK_ROW_MAJOR}) {
        vox_thread_free_buffers();
        test::memory_requests = 0;
        test::refused_request = layout == LAPACK_ROW_MAJOR ? 2 : 1;
        ::testing::internal::CaptureStdout();
        EXPECT_EQ(LAPACKE_dgetrf(layout, n, n, a.data(), n, pivots), LAPACK_WORK_MEMORY_ERROR);
        const std::string text = ::testing::internal::GetCapturedStdout();
        test::refused_request = 0;
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

} // namespace
