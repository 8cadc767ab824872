// trsv.cpp - solves op(A) y = x, A triangular, in place, by substitution.
#include "blas/kernels/triangle.hpp"

namespace {

using namespace panels;
using vox::divide;

struct substitution {
    static constexpr bool solves = true;

    // Solves for x[j ...] from the corner, then takes these columns off the rest.
    template <bool Upper, int C, class T>
    static VOX_INLINE void across(const triangular_job<T> &job, index_t j) {
        const pointers<C, const T> corner(job.a, j, j);
        T *const x = job.x + j;
        T v[C], s[C];
        unroll<C>([&](auto c) VOX_INLINED { v[c] = x[c]; });
        in_order<!Upper, C>([&](auto c) VOX_INLINED {
            if (is_zero(v[c])) // its column is left out, its diagonal too
                return;
            const T *const column = corner.at[c];
            if (!job.unit_diagonal)
                v[c] = divide(v[c], conj_if(job.conjugate, column[c]));
            unroll<C>([&](auto r) VOX_INLINED {
                if constexpr (off_diagonal<Upper, r, c>)
                    v[r] -= conj_if(job.conjugate, column[r]) * v[c];
            });
        });
        unroll<C>([&](auto c) VOX_INLINED {
            x[c] = v[c];
            s[c] = -v[c];
        });
        take_across<Upper>(job, j, s);
    }

    template <bool Upper, int C, class T>
    static VOX_INLINE void along(const triangular_job<T> &job, index_t j) {
        const pointers<C, const T> corner(job.a, j, j);
        const rows_beside rows = beside<Upper, C>(job, j);
        T *const x = job.x + j;
        T v[C];
        shared_along<C>(job.a, j, rows.first, rows.end, job.x, v, job.conjugate);
        unroll<C>([&](auto c) VOX_INLINED { v[c] = x[c] - v[c]; });
        in_order<Upper, C>([&](auto c) VOX_INLINED {
            const T *const column = corner.at[c];
            unroll<C>([&](auto r) VOX_INLINED {
                if constexpr (off_diagonal<Upper, r, c>)
                    v[c] -= conj_if(job.conjugate, column[r]) * v[r];
            });
            if (!job.unit_diagonal)
                v[c] = divide(v[c], conj_if(job.conjugate, column[c]));
        });
        unroll<C>([&](auto c) VOX_INLINED { x[c] = v[c]; });
    }

    // body(constant<0>), ... or from the last down.
    template <bool Forwards, int C, class Body>
    static VOX_INLINE void in_order(const Body &body) {
        unroll<C>([&](auto i) VOX_INLINED {
            if constexpr (Forwards)
                body(i);
            else
                body(constant<C - 1 - i>());
        });
    }
};

} // namespace

#define TRSV(p, P, T)                                                                              \
    extern "C" void VOX_KERNEL(blas, p##trsv)(const vox::triangular_job<T> *job) {                 \
        walk<substitution>(*job);                                                                  \
    }
VOX_PRECISIONS(TRSV)
