// eigen.cpp - Eigen's products behind the names of the BLAS, in a module of its own that is compiled
// for the machine it is built on, as a program that uses Eigen would be.
#include <Eigen/Core>

#include <complex>

namespace {

// With beta 0 and 1, Eigen's own two forms; small sizes never leave the caller's code there.
template <class T, class A, class B, class C>
void update(T alpha, const A &a, const B &b, T beta, C &&c) {
    if (beta == T(0)) {
        c.noalias() = alpha * a * b;
        return;
    }
    if (beta != T(1))
        c *= beta;
    c.noalias() += alpha * a * b;
}

template <class T>
void gemm(char transa, char transb, int m, int n, int k, T alpha, const T *a, int lda, const T *b,
          int ldb, T beta, T *c, int ldc) {
    using matrix = Eigen::Matrix<T, Eigen::Dynamic, Eigen::Dynamic>;
    using stride = Eigen::OuterStride<>;
    using source = Eigen::Map<const matrix, 0, stride>;
    Eigen::Map<matrix, 0, stride> result(c, m, n, stride(ldc));
    const auto with_b = [&](const auto &left) {
        if (transb == 'N')
            update(alpha, left, source(b, k, n, stride(ldb)), beta, result);
        else
            update(alpha, left, source(b, n, k, stride(ldb)).transpose(), beta, result);
    };
    if (transa == 'N')
        with_b(source(a, m, k, stride(lda)));
    else
        with_b(source(a, k, m, stride(lda)).transpose());
}

} // namespace

#define GEMM(name, T)                                                                              \
    extern "C" void name(const char *transa, const char *transb, const int *m, const int *n,       \
                         const int *k, const T *alpha, const T *a, const int *lda, const T *b,     \
                         const int *ldb, const T *beta, T *c, const int *ldc) {                    \
        gemm<T>(*transa, *transb, *m, *n, *k, *alpha, a, *lda, b, *ldb, *beta, c, *ldc);           \
    }
GEMM(sgemm_, float)
GEMM(dgemm_, double)
GEMM(cgemm_, std::complex<float>)
GEMM(zgemm_, std::complex<double>)
