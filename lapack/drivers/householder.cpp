// householder.cpp - one reflector and blocks of them.
#include "lapack/drivers/householder.hpp"

#include <limits>

#include "lapack/drivers/block_reflector.hpp"
#include "lapack/drivers/reflections.hpp"

namespace vox::lapack {
namespace {

float length(float a, float b) { return __builtin_hypotf(a, b); }
double length(double a, double b) { return __builtin_hypot(a, b); }

template <class T>
real_of<T> beta_of(T alpha, real_of<T> norm) {
    real_of<T> total = length(real(alpha), norm);
    if constexpr (is_complex<T>)
        total = length(imag(alpha), total);
    return __builtin_signbit(real(alpha)) ? total : -total;
}

} // namespace

template <class T>
void larfg(index_t n, T *alpha, T *x, index_t incx, T *tau) {
    using R = real_of<T>;
    using limits = std::numeric_limits<R>;
    *tau = T{};
    if (n < 1 || (n == 1 && !is_complex<T>))
        return;
    R norm = blas::nrm2(n - 1, x, incx);
    if (norm == 0 && imag(*alpha) == 0)
        return;
    // So small a beta would be inaccurate, so everything grows until it is not.
    constexpr R small = limits::min() / (limits::epsilon() / 2), growth = 1 / small;
    constexpr int most_rounds = 20;
    R beta = beta_of(*alpha, norm);
    int rounds = 0;
    if (__builtin_fabs(double(beta)) < double(small)) {
        do {
            ++rounds;
            blas::rscal(n - 1, growth, x, incx);
            beta *= growth;
            *alpha = growth * *alpha;
        } while (__builtin_fabs(double(beta)) < double(small) && rounds < most_rounds);
        norm = blas::nrm2(n - 1, x, incx);
        beta = beta_of(*alpha, norm);
    }
    *tau = make<T>((beta - real(*alpha)) / beta, -imag(*alpha) / beta);
    blas::scal(n - 1, divide(one<T>, *alpha - make<T>(beta)), x, incx);
    for (; rounds > 0; --rounds)
        beta *= small;
    *alpha = make<T>(beta);
}

template <class T>
void larf(char side, index_t m, index_t n, const T *v, index_t incv, T tau, T *c, index_t ldc,
          T *work) {
    if (is_zero(tau))
        return;
    const bool left = side == 'L';
    // Zeros at the end of v concern no row (column) of C. With a negative increment v begins with its
    // end.
    index_t order = left ? m : n;
    for (const T *end = incv > 0 ? v + (order - 1) * incv : v; order > 0 && is_zero(*end);
         end -= incv) {
        --order;
        v -= incv > 0 ? 0 : incv;
    }
    if (order <= 0)
        return;
    if (left) {
        blas::gemv('C', order, n, one<T>, c, ldc, v, incv, T{}, work, 1);
        blas::gerc(order, n, -tau, v, incv, work, 1, c, ldc);
    } else {
        blas::gemv('N', m, order, one<T>, c, ldc, v, incv, T{}, work, 1);
        blas::gerc(m, order, -tau, work, 1, v, incv, c, ldc);
    }
}

// By halves (Elmroth and Gustavson, IBM J. Res. Develop. 44(4), 2000): T's corner between those of
// the halves is -T_a (V_a^H V_b) T_b, where a's vectors are non-zero in all rows in which b's are.
template <class T>
void larft(char direct, char storev, index_t n, index_t k, const T *v, index_t ldv, const T *tau,
           T *t, index_t ldt) {
    if (n <= 0 || k <= 0)
        return;
    const bool forward = direct == 'F', by_columns = storev == 'C';
    if (forward && by_columns && k <= few_reflectors)
        return triangular_factor(n, k, v, ldv, tau, t, ldt);
    if (k == 1) {
        *t = *tau;
        return;
    }
    const factor<T> all = {v, ldv, !by_columns, !by_columns};
    const index_t k1 = k / 2, k2 = k - k1; // columns of the halves
    T *const t2 = t + k1 + k1 * ldt;
    // The first half of a backward sequence ends above the last k2 rows, the second of a forward
    // one begins below the first k1.
    larft(direct, storev, forward ? n : n - k2, k1, v, ldv, tau, t, ldt);
    larft(direct, storev, forward ? n - k1 : n, k2, place(all, forward ? k1 : 0, k1), ldv, tau + k1,
          t2, ldt);
    const index_t a = forward ? 0 : k1, b = forward ? k1 : 0;
    const index_t ka = forward ? k1 : k2, kb = forward ? k2 : k1;
    const auto half = stored_reflectors(forward, by_columns, forward ? n - k1 : n - k2, kb,
                                        place(all, forward ? k1 : 0, b), ldv, t,
                                        ldt); // b's, with rows of its own
    const index_t first = forward ? k1 : 0;
    const factor<T> va = part_of(all, first, a);
    T *const corner = t + a + b * ldt;
    for (index_t j = 0; j < kb; ++j)
        for (index_t i = 0; i < ka; ++i)
            corner[i + j * ldt] = conj_if(by_columns, *place(va, half.tip_row + j, i));
    triangle_multiply<T>({false, ka, kb, one<T>, half.tip, corner, ldt});
    product_of(ka, kb, half.rest_rows, one<T>, adjoint(part_of(va, half.rest_row, 0)), half.rest,
               one<T>, corner, ldt);
    const char uplo = forward ? 'U' : 'L';
    blas::trmm('L', uplo, 'N', 'N', ka, kb, -one<T>, forward ? t : t2, ldt, corner, ldt);
    blas::trmm('R', uplo, 'N', 'N', ka, kb, one<T>, forward ? t2 : t, ldt, corner, ldt);
}

template <class T>
void larfb(char side, char trans, char direct, char storev, index_t m, index_t n, index_t k,
           const T *v, index_t ldv, const T *t, index_t ldt, T *c, index_t ldc, T *work,
           index_t ldwork) {
    if (m <= 0 || n <= 0 || k <= 0)
        return;
    const bool left = side == 'L';
    stored_reflectors(direct == 'F', storev == 'C', left ? m : n, k, v, ldv, t, ldt)
        .apply(left, trans != 'N', m, n, c, ldc, work, ldwork);
}

#define INSTANCES(p, P, T)                                                                         \
    template void larfg<T>(index_t, T *, T *, index_t, T *);                                       \
    template void larf<T>(char, index_t, index_t, const T *, index_t, T, T *, index_t, T *);       \
    template void larft<T>(char, char, index_t, index_t, const T *, index_t, const T *, T *,       \
                           index_t);                                                               \
    template void larfb<T>(char, char, char, char, index_t, index_t, index_t, const T *, index_t,  \
                           const T *, index_t, T *, index_t, T *, index_t);
VOX_PRECISIONS(INSTANCES)
#undef INSTANCES

} // namespace vox::lapack
