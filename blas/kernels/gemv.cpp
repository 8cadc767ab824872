// gemv.cpp - y := beta y + alpha op(A) x for full, band and packed matrices.
#include "blas/jobs.hpp"
#include "blas/kernels/clipped.hpp"

namespace {

using namespace panels;
using vox::is_zero;
using vox::product_job;

// beta = 0 overwrites.
template <class T>
VOX_PANEL void scale(T beta, T *y, index_t n) {
    using R = real_of<T>;
    if (real(beta) == 1 && imag(beta) == 0)
        return;
    if (is_zero(beta)) {
        for_rows<1, T>(n, [&](auto, index_t i, auto access) { access.put(y + i, vec<R>{}); });
        return;
    }
    const auto re = broadcast(real(beta)), im = broadcast_pair(-imag(beta), imag(beta));
    for_rows<1, T>(n, [&](auto, index_t i, auto access) {
        const auto v = access.get(y + i);
        if constexpr (is_complex<T>)
            access.put(y + i, fma(swap_pairs(v), im, v * re));
        else
            access.put(y + i, v * re);
    });
}

template <class T>
VOX_PANEL void gemv(const product_job<T> &job) {
    const index_t first = job.first_row, end = job.end_row;
    T *const y = job.y;
    if (job.transposed)
        scale(job.beta, y + job.first_column, job.end_column - job.first_column);
    else
        scale(job.beta, y + first, end - first);
    if (is_zero(job.alpha))
        return;
    if (job.transposed)
        for_groups<group<T>>(true, job.first_column, job.end_column, [&](auto count, index_t j) {
            T t[count];
            along_clipped<count>(job.a, j, first, end, job.x, t, job.conjugate);
            unroll<count>([&](auto c) { y[j + c] += job.alpha * t[c]; });
        });
    else
        for_groups<group<T>>(true, job.first_column, job.end_column, [&](auto count, index_t j) {
            T s[count];
            unroll<count>([&](auto c) { s[c] = job.alpha * job.x[j + c]; });
            across_clipped<count>(job.a, j, first, end, s, y, job.conjugate);
        });
}

} // namespace

#define GEMV(p, P, T)                                                                              \
    extern "C" void VOX_KERNEL(blas, p##gemv)(const vox::product_job<T> *job) { gemv(*job); }
VOX_PRECISIONS(GEMV)
