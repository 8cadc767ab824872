// gemv.cpp - y := beta y + alpha op(A) x for full, band and packed matrices.
#include "blas/jobs.hpp"
#include "blas/kernels/clipped.hpp"

namespace {

using namespace panels;
using vox::is_zero;
using vox::product_job;

// beta = 0 overwrites.
template <class T>
VOX_INLINE void scale(T beta, T *y, index_t n) {
    using R = real_of<T>;
    if (real(beta) == 1 && imag(beta) == 0)
        return;
    if (is_zero(beta)) {
        for_rows<1, T>(n, [&](auto, index_t i, auto access)
                              VOX_INLINED { access.put(y + i, vec<R>{}); });
        return;
    }
    for_rows<1, T>(n, [&](auto, index_t i, auto access)
                          VOX_INLINED { access.put(y + i, times(beta, access.get(y + i))); });
}

// beta y + v; for beta = 0 that is 0 + v, without a look at y, so that no zero comes out negative.
template <class T>
struct join_y {
    bool none, plain;
    T beta;
    VOX_INLINE explicit join_y(T b)
        : none(is_zero(b)), plain(real(b) == 1 && imag(b) == 0), beta(b) {}

    VOX_INLINE void put(T *y, T v) const { *y = (none ? T{} : plain ? *y : beta * *y) + v; }
    template <class V, class Access>
    VOX_INLINE void put(T *y, V v, Access access) const {
        if (none) {
            v += V{};
        } else {
            const V old = access.get(y);
            v += plain ? old : times(beta, old);
        }
        access.put(y, v);
    }
};

// y := beta y + alpha A x for a tile of rows of a full matrix, the last vector of which may be a part: the sums stay in
// registers over all columns. Columns in turn go to different sums, so that as many additions are
// in flight as the units can take.
template <int Vectors, class T, class Access>
VOX_INLINE void tile(const columns<const T> &A, index_t first_column, index_t end_column,
                     index_t row, T alpha, const T *x, const join_y<T> &join_with, T *y,
                     bool conjugate, Access last) {
    using R = real_of<T>;
    constexpr int w = width<T>;
    constexpr int turns = Vectors * parts<T> >= 8 ? 1 : Vectors * parts<T> >= 4 ? 2 : 4;
    vec<R> re[Vectors][turns] = {}, im[Vectors][turns] = {};
    const T *a = A.a + first_column * A.lda + row;
    const auto add = [&](auto turn, const T *column, index_t j) VOX_INLINED {
        const auto x_re = broadcast(real(x[j])), x_im = broadcast(imag(x[j]));
        unroll<Vectors>([&](auto v) VOX_INLINED {
            vec<R> rows;
            if constexpr (v == Vectors - 1)
                rows = last.get(column + v * w);
            else
                rows = whole().get(column + v * w);
            re[v][turn] = fma(rows, x_re, re[v][turn]);
            if constexpr (is_complex<T>)
                im[v][turn] = fma(rows, x_im, im[v][turn]);
        });
    };
    index_t j = first_column;
    for (; j + turns <= end_column; j += turns, a += turns * A.lda)
        unroll<turns>([&](auto turn) VOX_INLINED { add(turn, a + turn * A.lda, j + turn); });
    for (; j < end_column; ++j, a += A.lda)
        add(constant<0>(), a, j);

    const joint<T> join(conjugate);
    unroll<Vectors>([&](auto v) VOX_INLINED {
        unroll<turns - 1>([&](auto turn) VOX_INLINED {
            re[v][0] += re[v][turn + 1];
            im[v][0] += im[v][turn + 1];
        });
        const auto bring_home = [&](auto access) VOX_INLINED {
            T *const out = y + row + v * w;
            if constexpr (is_complex<T>)
                re[v][0] = fma(swap_pairs(im[v][0]), join.of_im, re[v][0] * join.of_re);
            join_with.put(out, times(alpha, re[v][0]), access);
        };
        if constexpr (v == Vectors - 1)
            bring_home(last);
        else
            bring_home(whole());
    });
}

template <class T>
VOX_INLINE void in_tiles(const product_job<T> &job) {
    constexpr int w = width<T>, most = 8 / parts<T>;
    const join_y<T> join(job.beta);
    index_t row = job.first_row;
    const auto rows = [&](auto vectors, auto last) VOX_INLINED {
        tile<vectors>(job.a, job.first_column, job.end_column, row, job.alpha, job.x, join, job.y,
                      job.conjugate, last);
        row += vectors * w;
    };
    while (job.end_row - row >= most * w)
        rows(constant<most>(), whole());
    const index_t left = job.end_row - row;
    unroll<most>([&](auto v) VOX_INLINED {
        if (left > v * w && left <= (v + 1) * w)
            rows(constant<v + 1>(), first_few{left - v * w});
    });
}

// Full matrices that are near enough for tiles, which walk from column to column; larger ones are streamed a
// few columns at a time.
template <class T>
VOX_INLINE bool is_near(const product_job<T> &job) {
    const index_t size = (job.end_column - job.first_column) * (job.end_row - job.first_row);
    return size * index_t(sizeof(T)) < far_bytes;
}

// Columns in the given groups against x; y takes one element from each.
template <int... Groups, class T>
VOX_INLINE void along_columns(const product_job<T> &job) {
    const join_y<T> join(job.beta);
    for_groups<Groups...>(
        true, job.first_column, job.end_column, [&](auto count, index_t j) VOX_INLINED {
            T t[count];
            along_clipped<count>(job.a, j, job.first_row, job.end_row, job.x, t, job.conjugate);
            if constexpr (count == 1) {
                join.put(job.y + j, job.alpha * t[0]);
            } else {
                in_memory(t);
                constexpr int all = count * int(sizeof(T));
                constexpr exactly<(all < vector_bytes ? all : vector_bytes)> some;
                constexpr int step = (all < vector_bytes ? all : vector_bytes) / int(sizeof(T));
                unroll<count / step>([&](auto k) VOX_INLINED {
                    join.put(job.y + j + k * step, times(job.alpha, some.get(t + k * step)), some);
                });
            }
        });
}

template <int... Groups, class T>
VOX_INLINE void across_columns(const product_job<T> &job) {
    const index_t first = job.first_row, end = job.end_row;
    scale(job.beta, job.y + first, end - first);
    for_groups<Groups...>(
        true, job.first_column, job.end_column, [&](auto count, index_t j) VOX_INLINED {
            T s[count];
            unroll<count>([&](auto c) VOX_INLINED { s[c] = job.alpha * job.x[j + c]; });
            across_clipped<count>(job.a, j, first, end, s, job.y, job.conjugate);
        });
}

template <class T>
VOX_INLINE void gemv(const product_job<T> &job) {
    if (VOX_UNLIKELY(is_zero(job.alpha)))
        scale(job.beta, job.y + (job.transposed ? job.first_column : job.first_row),
              job.transposed ? job.end_column - job.first_column : job.end_row - job.first_row);
    else if (job.transposed)
        along_columns<group_of_along<T>, group<T>, 1>(job);
    else if (job.a.above != vox::all_rows || job.a.bend != 0)
        across_columns<group<T>, 1>(job);
    else if (is_near(job))
        in_tiles(job);
    else
        across_columns<group_of_across<T>, group<T>, 1>(job);
}

} // namespace

#define GEMV(p, P, T)                                                                              \
    extern "C" void VOX_KERNEL(blas, p##gemv)(const vox::product_job<T> *job) { gemv(*job); }
VOX_PRECISIONS(GEMV)
