// trmv.cpp - x := op(A) x, A triangular, in place: the columns in the order in which each element of
// x is overwritten only when nothing needs its old value any more.
#include "blas/jobs.hpp"
#include "blas/kernels/clipped.hpp"

namespace {

using namespace panels;
using vox::is_zero;
using vox::triangular_job;

// x += A(:, j ...) x[j ...]. A zero in x leaves its column out, NaN or not, as the reference does.
template <bool Upper, int C, class T>
VOX_INLINE void step_across(const triangular_job<T> &job, index_t j) {
    const pointers<C, const T> corner(job.a, j, j);
    T *const x = job.x;
    T s[C];
    bool some_zero = false;
    unroll<C>([&](auto c) VOX_INLINED {
        s[c] = x[j + c];
        some_zero |= is_zero(s[c]);
    });
    const index_t first = Upper ? job.first : j + C, end = Upper ? j : job.end;
    if (VOX_LIKELY(!some_zero)) {
        shared_across<C>(job.a, j, first, end, s, x, job.conjugate);
    } else {
        for (int c = 0; c < C; ++c)
            if (!is_zero(s[c]))
                shared_across<1>(job.a, j + c, first, end, s + c, x, job.conjugate);
    }
    T sum[C] = {};
    unroll<C>([&](auto c) VOX_INLINED {
        if (is_zero(s[c]))
            return;
        const T *const column = corner.at[c];
        unroll<C>([&](auto r) VOX_INLINED {
            if constexpr (Upper ? r < c : r > c)
                sum[r] += conj_if(job.conjugate, column[r]) * s[c];
        });
        sum[c] += job.unit_diagonal ? s[c] : conj_if(job.conjugate, column[c]) * s[c];
    });
    unroll<C>([&](auto c) VOX_INLINED { x[j + c] = sum[c]; });
}

template <bool Upper, int C, class T>
VOX_INLINE void step_along(const triangular_job<T> &job, index_t j) {
    const pointers<C, const T> corner(job.a, j, j);
    T *const x = job.x;
    T t[C];
    const index_t first = Upper ? job.first : j + C, end = Upper ? j : job.end;
    shared_along<C>(job.a, j, first, end, x, t, job.conjugate);
    unroll<C>([&](auto c) VOX_INLINED {
        const T *const column = corner.at[c];
        unroll<C>([&](auto r) VOX_INLINED {
            if constexpr (Upper ? r < c : r > c)
                t[c] += conj_if(job.conjugate, column[r]) * x[j + r];
        });
        t[c] += job.unit_diagonal ? x[j + c] : conj_if(job.conjugate, column[c]) * x[j + c];
    });
    unroll<C>([&](auto c) VOX_INLINED { x[j + c] = t[c]; });
}

template <bool Upper, int C, class T>
VOX_INLINE void all_columns(const triangular_job<T> &job) {
    if (job.transposed)
        for_groups<C, 1>(!Upper, job.first, job.end, [&](auto count, index_t j) VOX_INLINED {
            step_along<Upper, count>(job, j);
        });
    else
        for_groups<C, 1>(Upper, job.first, job.end, [&](auto count, index_t j) VOX_INLINED {
            step_across<Upper, count>(job, j);
        });
}

template <bool Upper, class T>
__attribute__((noinline)) void trmv(const triangular_job<T> &job) {
    // A band narrower than a group has no corner of full size.
    if (VOX_UNLIKELY(job.a.above + job.a.below < group<T> - 1))
        all_columns<Upper, 1>(job);
    else
        all_columns<Upper, group<T>>(job);
}

} // namespace

#define TRMV(p, P, T)                                                                              \
    extern "C" void VOX_KERNEL(blas, p##trmv)(const vox::triangular_job<T> *job) {                 \
        job->upper ? trmv<true>(*job) : trmv<false>(*job);                                         \
    }
VOX_PRECISIONS(TRMV)
