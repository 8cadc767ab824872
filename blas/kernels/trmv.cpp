// trmv.cpp - x := op(A) x, A triangular, in place.
#include "blas/kernels/triangle.hpp"

namespace {

using namespace panels;

struct product {
    static constexpr bool solves = false;

    template <bool Upper, int C, class T>
    static VOX_INLINE void across(const triangular_job<T> &job, index_t j) {
        const pointers<C, const T> corner(job.a, j, j);
        T *const x = job.x + j;
        T s[C], sum[C] = {};
        unroll<C>([&](auto c) VOX_INLINED { s[c] = x[c]; });
        take_across<Upper>(job, j, s);
        unroll<C>([&](auto c) VOX_INLINED {
            if (is_zero(s[c]))
                return;
            const T *const column = corner.at[c];
            unroll<C>([&](auto r) VOX_INLINED {
                if constexpr (off_diagonal<Upper, r, c>)
                    sum[r] += conj_if(job.conjugate, column[r]) * s[c];
            });
            sum[c] += job.unit_diagonal ? s[c] : conj_if(job.conjugate, column[c]) * s[c];
        });
        unroll<C>([&](auto c) VOX_INLINED { x[c] = sum[c]; });
    }

    template <bool Upper, int C, class T>
    static VOX_INLINE void along(const triangular_job<T> &job, index_t j) {
        const pointers<C, const T> corner(job.a, j, j);
        const rows_beside rows = beside<Upper, C>(job, j);
        T *const x = job.x + j;
        T t[C];
        shared_along<C>(job.a, j, rows.first, rows.end, job.x, t, job.conjugate);
        unroll<C>([&](auto c) VOX_INLINED {
            const T *const column = corner.at[c];
            unroll<C>([&](auto r) VOX_INLINED {
                if constexpr (off_diagonal<Upper, r, c>)
                    t[c] += conj_if(job.conjugate, column[r]) * x[r];
            });
            t[c] += job.unit_diagonal ? x[c] : conj_if(job.conjugate, column[c]) * x[c];
        });
        unroll<C>([&](auto c) VOX_INLINED { x[c] = t[c]; });
    }
};

} // namespace

#define TRMV(p, P, T)                                                                              \
    extern "C" void VOX_KERNEL(blas, p##trmv)(const vox::triangular_job<T> *job) {                 \
        walk<product>(*job);                                                                       \
    }
VOX_PRECISIONS(TRMV)
