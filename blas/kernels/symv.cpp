// symv.cpp - ?symv, ?hemv and their band and packed forms: one pass over the stored triangle, each
// element of it used twice.
#include "blas/jobs.hpp"
#include "blas/kernels/clipped.hpp"

namespace {

using namespace panels;
using vox::symmetric_job;

template <int C, class T>
VOX_PANEL void step(const symmetric_job<T> &job, index_t j) {
    const bool mirrored = job.conjugate != job.hermitian; // conjugate of the mirrored element
    const T *const x = job.x_rows;
    T *const y = job.y_rows;
    T s[C], t[C] = {};
    unroll<C>([&](auto c) { s[c] = job.alpha * job.x_columns[j + c]; });

    const index_t first = job.on_diagonal && !job.upper ? j + C : job.first_row;
    const index_t end = job.on_diagonal && job.upper ? j : job.end_row;
    clipped<C>(job.a, j, first, end, [&](auto count, index_t k, index_t from, index_t to) {
        const pointers<count, const T> p(job.a, k, from);
        T part[count];
        across_and_along<count>(to - from, p.at, s + (k - j), y + from, x + from, part,
                                job.conjugate, mirrored);
        unroll<count>([&](auto c) { t[k - j + c] += part[c]; });
    });

    if (job.on_diagonal)
        unroll<C>([&](auto c) {
            const T *const column = job.a(j + c) + j;
            unroll<C>([&](auto r) {
                if (job.upper ? r < c : r > c) {
                    y[j + r] += conj_if(job.conjugate, column[r]) * s[c];
                    t[c] += conj_if(mirrored, column[r]) * x[j + r];
                }
            });
            const T d =
                job.hermitian ? make<T>(real(column[c])) : conj_if(job.conjugate, column[c]);
            y[j + c] += d * s[c];
        });
    unroll<C>([&](auto c) { job.y_columns[j + c] += job.alpha * t[c]; });
}

template <class T>
VOX_PANEL void symv(const symmetric_job<T> &job) {
    constexpr int C = group_of_both<T>;
    const auto any = [&](auto count, index_t j) { step<count>(job, j); };
    // A band narrower than a group has no corner of full size.
    if (VOX_UNLIKELY(job.a.above + job.a.below < C - 1))
        for_groups<1>(true, job.first_column, job.end_column, any);
    else
        for_groups<C>(true, job.first_column, job.end_column, any);
}

} // namespace

#define SYMV(p, P, T)                                                                              \
    extern "C" void VOX_KERNEL(blas, p##symv)(const vox::symmetric_job<T> *job) { symv(*job); }
VOX_PRECISIONS(SYMV)
