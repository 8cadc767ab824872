// symv.cpp - ?symv, ?hemv and their band and packed forms: one pass over the stored triangle, each
// element of it used twice.
#include "blas/jobs.hpp"
#include "blas/kernels/clipped.hpp"

namespace {

using namespace panels;
using vox::symmetric_job;

template <bool Upper, int C, class T>
VOX_INLINE void step(const symmetric_job<T> &job, index_t j) {
    const bool mirrored = job.conjugate != job.hermitian; // conjugate of the mirrored element
    const T *const x = job.x_rows;
    T *const y = job.y_rows;
    T s[C], t[C] = {};
    unroll<C>([&](auto c) VOX_INLINED { s[c] = job.alpha * job.x_columns[j + c]; });

    const index_t first = job.on_diagonal && !Upper ? j + C : job.first_row;
    const index_t end = job.on_diagonal && Upper ? j : job.end_row;
    clipped<C>(
        job.a, j, first, end,
        [&](index_t from, index_t to) VOX_INLINED {
            const pointers<C, const T> p(job.a, j, from);
            across_and_along<C>(to - from, p.at, s, y + from, x + from, t, job.conjugate, mirrored);
        },
        [&](int c, const T *column, index_t i) VOX_INLINED {
            const T a = column[i];
            y[i] += conj_if(job.conjugate, a) * s[c];
            t[c] += conj_if(mirrored, a) * x[i];
        });

    const pointers<C, const T> corner(job.a, j, j);
    T sum[C] = {};
    if (job.on_diagonal) {
        T rows[C];
        unroll<C>([&](auto c) VOX_INLINED { rows[c] = x[j + c]; });
        unroll<C>([&](auto c) VOX_INLINED {
            const T *const column = corner.at[c];
            unroll<C>([&](auto r) VOX_INLINED {
                if constexpr (Upper ? r < c : r > c) {
                    const T a = column[r];
                    sum[r] += conj_if(job.conjugate, a) * s[c];
                    t[c] += conj_if(mirrored, a) * rows[r];
                }
            });
            const T d = column[c];
            sum[c] += (job.hermitian ? make<T>(real(d)) : conj_if(job.conjugate, d)) * s[c];
        });
    }
    unroll<C>([&](auto c) VOX_INLINED { job.y_columns[j + c] += sum[c] + job.alpha * t[c]; });
}

template <bool Upper, int C, class T>
VOX_INLINE void all_columns(const symmetric_job<T> &job) {
    for_groups<C, 1>(true, job.first_column, job.end_column,
                     [&](auto count, index_t j) VOX_INLINED { step<Upper, count>(job, j); });
}

template <bool Upper, class T>
__attribute__((noinline)) void symv(const symmetric_job<T> &job) {
    // A band narrower than a group has no corner of full size.
    if (VOX_UNLIKELY(job.a.above + job.a.below < group_of_both<T> - 1))
        all_columns<Upper, 1>(job);
    else
        all_columns<Upper, group_of_both<T>>(job);
}

} // namespace

#define SYMV(p, P, T)                                                                              \
    extern "C" void VOX_KERNEL(blas, p##symv)(const vox::symmetric_job<T> *job) {                  \
        job->upper ? symv<true>(*job) : symv<false>(*job);                                         \
    }
VOX_PRECISIONS(SYMV)
