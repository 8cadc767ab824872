// trsv.cpp - solves op(A) y = x, A triangular, in place, by substitution.
#include "blas/jobs.hpp"
#include "blas/kernels/clipped.hpp"

namespace {

using namespace panels;
using vox::divide;
using vox::is_zero;
using vox::triangular_job;

// Solves for x[j ...] from the corner on the diagonal, then takes these columns off the rest. A zero
// in x leaves its column out, NaN or not, as the reference does.
template <bool Upper, int C, class T>
VOX_INLINE void step_across(const triangular_job<T> &job, index_t j) {
    const pointers<C, const T> corner(job.a, j, j);
    T *const x = job.x;
    T v[C];
    bool some_zero = false;
    unroll<C>([&](auto c) VOX_INLINED { v[c] = x[j + c]; });
    unroll<C>([&](auto i) VOX_INLINED {
        const auto solve = [&](auto c) VOX_INLINED {
            if (is_zero(v[c])) {
                some_zero = true;
                return;
            }
            const T *const column = corner.at[c];
            if (!job.unit_diagonal)
                v[c] = divide(v[c], conj_if(job.conjugate, column[c]));
            unroll<C>([&](auto r) VOX_INLINED {
                if constexpr (Upper ? r < c : r > c)
                    v[r] -= conj_if(job.conjugate, column[r]) * v[c];
            });
        };
        if constexpr (Upper)
            solve(constant<C - 1 - i>());
        else
            solve(i);
    });
    T s[C];
    unroll<C>([&](auto c) VOX_INLINED {
        x[j + c] = v[c];
        s[c] = -v[c];
    });
    const index_t first = Upper ? job.first : j + C, end = Upper ? j : job.end;
    if (VOX_LIKELY(!some_zero)) {
        shared_across<C>(job.a, j, first, end, s, x, job.conjugate);
    } else {
        for (int c = 0; c < C; ++c)
            if (!is_zero(s[c]))
                shared_across<1>(job.a, j + c, first, end, s + c, x, job.conjugate);
    }
}

template <bool Upper, int C, class T>
VOX_INLINE void step_along(const triangular_job<T> &job, index_t j) {
    const pointers<C, const T> corner(job.a, j, j);
    T *const x = job.x;
    T v[C];
    const index_t first = Upper ? job.first : j + C, end = Upper ? j : job.end;
    shared_along<C>(job.a, j, first, end, x, v, job.conjugate);
    unroll<C>([&](auto c) VOX_INLINED { v[c] = x[j + c] - v[c]; });
    unroll<C>([&](auto i) VOX_INLINED {
        const auto solve = [&](auto c) VOX_INLINED {
            const T *const column = corner.at[c];
            unroll<C>([&](auto r) VOX_INLINED {
                if constexpr (Upper ? r < c : r > c)
                    v[c] -= conj_if(job.conjugate, column[r]) * v[r];
            });
            if (!job.unit_diagonal)
                v[c] = divide(v[c], conj_if(job.conjugate, column[c]));
        };
        if constexpr (Upper)
            solve(i);
        else
            solve(constant<C - 1 - i>());
    });
    unroll<C>([&](auto c) VOX_INLINED { x[j + c] = v[c]; });
}

template <bool Upper, int C, class T>
VOX_INLINE void all_columns(const triangular_job<T> &job) {
    if (job.transposed)
        for_groups<C, 1>(Upper, job.first, job.end, [&](auto count, index_t j) VOX_INLINED {
            step_along<Upper, count>(job, j);
        });
    else
        for_groups<C, 1>(!Upper, job.first, job.end, [&](auto count, index_t j) VOX_INLINED {
            step_across<Upper, count>(job, j);
        });
}

template <bool Upper, class T>
__attribute__((noinline)) void trsv(const triangular_job<T> &job) {
    // A band narrower than a group has no corner of full size.
    if (VOX_UNLIKELY(job.a.above + job.a.below < group<T> - 1))
        all_columns<Upper, 1>(job);
    else
        all_columns<Upper, group<T>>(job);
}

} // namespace

#define TRSV(p, P, T)                                                                              \
    extern "C" void VOX_KERNEL(blas, p##trsv)(const vox::triangular_job<T> *job) {                 \
        job->upper ? trsv<true>(*job) : trsv<false>(*job);                                         \
    }
VOX_PRECISIONS(TRSV)
