// gemm_relatives_test.cpp - ?gemmt and ?gemm3m beside ?gemm: the same products of small integers, in a
// triangle and in full, for all operations in every form.
#include <gtest/gtest.h>

#include "tests/blas/level3_table.hpp"

namespace {

using namespace test;

template <class T>
class GemmRelatives : public ::testing::Test {};
using types = ::testing::Types<float, double, vox_complex_float, vox_complex_double>;
TYPED_TEST_SUITE(GemmRelatives, types);

TYPED_TEST(GemmRelatives, ComputeWhatItDoes) {
    using T = TypeParam;
    constexpr int n = 5, ld = 7;
    std::vector<T> a(ld * ld), b = a, c = a;
    for (int i = 0; i < ld * ld; ++i) {
        a[size_t(i)] = vox::make<T>(i % 5, i % 3);
        b[size_t(i)] = vox::make<T>(i % 4, i % 7);
        c[size_t(i)] = vox::make<T>(i % 6, i % 5);
    }
    const routine<T> &gemm = level3_routines<T>()[0];
    for (const routine<T> &r : level3_routines<T>())
        for (unsigned options = 0; r.has('v') && options < 3 * 3 * 2 * 3; ++options) {
            std::vector<T> result = c, product = c;
            arguments<T> call;
            call.trans = "NTC"[options % 3];
            call.transb = "NTC"[options / 3 % 3];
            call.uplo = "UL"[options / 9 % 2];
            const unsigned form = options / 18;
            call.layout = form == 2 ? CblasRowMajor : CblasColMajor;
            call.m = call.n = n, call.k = 3;
            call.lda = call.ldb = call.ldc = ld;
            call.alpha = vox::make<T>(2, 1), call.beta = vox::make<T>(3, 1);
            call.a = a.data(), call.x = b.data();
            call.y = product.data();
            gemm.c(call);
            call.y = result.data();
            (form == 0 ? r.fortran : r.c)(call);
            for (int j = 0; j < ld; ++j)
                for (int i = 0; i < ld; ++i) {
                    const bool upper = form == 2 ? i >= j : i <= j;
                    const bool lower = form == 2 ? i <= j : i >= j;
                    const bool computed = !r.has('u') || (call.uplo == 'U' ? upper : lower);
                    const size_t at = size_t(i + j * ld);
                    ASSERT_EQ(result[at], computed ? product[at] : c[at])
                        << r.name << ' ' << options << ' ' << i << ' ' << j;
                }
        }
}

} // namespace
