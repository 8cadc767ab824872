// level3.hpp - the entry points of level 3 on a code path, for one precision.
//
// One source per precision, so that what all routines share is compiled once for each:
//
//   VOX_LEVEL3(d, double)                 the entry points
//   VOX_GEMM_PARTS(d, double, VOX_TILE_d) what they are made of, by name, for profilers, debuggers and
//                                         tests; the linker leaves out of the library what is inlined
#pragma once

#include "blas/kernels/product.hpp"
#include "blas/kernels/trsm.hpp"

#define VOX_PATH_NAME(name) VOX_PATH_NAME_1(VOX_PATH, name)
#define VOX_PATH_NAME_1(path, name) VOX_PATH_NAME_2(path, name)
#define VOX_PATH_NAME_2(path, name) vox_blas_##path##_##name

namespace {

VOX_INLINE int operation_code(char trans) {
    switch (trans & ~0x20) {
    case 'N':
        return 0;
    case 'T':
        return 1;
    case 'C':
        return 2;
    }
    return -1;
}

template <class T>
VOX_INLINE vox::product<T>
general_product(const char *transa, const char *transb, const index_t *m, const index_t *n,
                const index_t *k, const T *alpha, const T *a, const index_t *lda, const T *b,
                const index_t *ldb, const T *beta, T *c, const index_t *ldc) {
    const int op_a = operation_code(*transa), op_b = operation_code(*transb);
    return {
        *m,    *n, *k,  *alpha, {a, *lda, op_a != 0, op_a == 2}, {b, *ldb, op_b != 0, op_b == 2},
        *beta, c,  *ldc};
}

// Tiles side by side from one strip of A.
template <class T>
__attribute__((noinline)) void multiply_strip(index_t rows, index_t columns, index_t depth,
                                              const real_of<T> *a, const real_of<T> *b,
                                              const strides &at, finish<T> out) {
    const index_t width = even_share(columns, tile_width<T>);
    for (index_t j = 0; j < columns; j += width, out.c += width * out.ldc)
        any_tile<T>(rows, least(width, columns - j), depth, a, b + j * at.b_column, at, out);
}

// A general product of one thread. One shallow strip of A is read in place by any rule, and what is small
// enough for every nanosecond to count is one.
template <class T, class Strategy>
VOX_INLINE void multiply_any(Strategy strategy, const char *transa, const char *transb,
                             const index_t *m, const index_t *n, const index_t *k, const T *alpha,
                             const T *a, const index_t *lda, const T *b, const index_t *ldb,
                             const T *beta, T *c, const index_t *ldc) {
    const index_t rows = *m, columns = *n, depth = *k;
    if (rows < 1 || columns < 1)
        return;
    const int op_a = operation_code(*transa), op_b = operation_code(*transb);
    const bool plain = op_a == 0 || (rows == 1 && op_a == 1); // a row lies as its transpose does
    if (VOX_LIKELY(plain && rows <= tile_rows<T> && depth >= 1 &&
                   depth < strategy_limits_of<T>.shallow_depth && readable_rows<T>(rows) &&
                   !vox::is_zero(*alpha))) {
        const strides at = strides_of<T>(op_a == 0 ? *lda : 1, *ldb, op_b != 0);
        const finish<T> out = {*alpha, *beta, c, *ldc, false, op_b == 2};
        if (columns > tile_width<T>)
            return multiply_strip<T>(rows, columns, depth, flat(a), flat(b), at, out);
        return any_tile<T>(rows, columns, depth, flat(a), flat(b), at, out);
    }
    multiply_general(strategy,
                     general_product(transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc));
}

} // namespace

#define VOX_GEMM_PARAMETERS_X(T)                                                                   \
    (const char *transa, const char *transb, const vox::index_t *m, const vox::index_t *n,         \
     const vox::index_t *k, const T *alpha, const T *a, const vox::index_t *lda, const T *b,       \
     const vox::index_t *ldb, const T *beta, T *c, const vox::index_t *ldc)
#define VOX_GEMM_ARGUMENTS_X (transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc)

#define VOX_LEVEL3(p, T)                                                                           \
    extern "C" int VOX_PATH_NAME(p##gemm_get_bufs)(vox::gemm_info * info, index_t threads) {       \
        return get_buffers<T>(info, threads, false);                                               \
    }                                                                                              \
    extern "C" int VOX_PATH_NAME(p##gemm_get_bufs_pack)(vox::gemm_info * info, index_t threads) {  \
        return get_buffers<T>(info, threads, true);                                                \
    }                                                                                              \
    extern "C" void VOX_PATH_NAME(p##gemm_free_bufs)(vox::gemm_info * info) {                      \
        free_buffers(info);                                                                        \
    }                                                                                              \
    extern "C" void VOX_PATH_NAME(p##gemm_get_info)(const gemm_strategy *strategy, index_t m,      \
                                                    index_t n, index_t k, vox::gemm_info *info) {  \
        set_blocks<T>(strategy, m, n, k, info);                                                    \
        info->mode = strategy->kind == 4 ? 2 : 3;                                                  \
        info->memory = nullptr;                                                                    \
        info->get = VOX_PATH_NAME(p##gemm_get_bufs);                                               \
        info->release = VOX_PATH_NAME(p##gemm_free_bufs);                                          \
    }                                                                                              \
    static constexpr gemm_strategy p##strategy(int kind) {                                         \
        return {kind, tile_rows<T>, tile_width<T>, 1, VOX_PATH_NAME(p##gemm_get_info)};            \
    }                                                                                              \
    extern "C" void VOX_PATH_NAME(p##gemm_map_thread_to_kernel)(int role,                          \
                                                                gemm_strategy *strategy) {         \
        *strategy = p##strategy(role == 0   ? 2                                                    \
                                : role == 1 ? 4                                                    \
                                : role == 3 ? 32                                                   \
                                : role == 5 ? 16                                                   \
                                            : 0);                                                  \
    }                                                                                              \
    extern "C" void VOX_KERNEL(blas, p##gemm) VOX_GEMM_PARAMETERS_X(T) {                           \
        multiply_any<T>(p##strategy, transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c,      \
                        ldc);                                                                      \
    }                                                                                              \
    extern "C" void VOX_KERNEL(blas, p##gemm_nocopy_driver) VOX_GEMM_PARAMETERS_X(T) {             \
        const vox::product<T> job = general_product<T> VOX_GEMM_ARGUMENTS_X;                       \
        if (nothing_to_multiply(job))                                                              \
            scale_region(job, 0, job.m, 0, job.n);                                                 \
        else                                                                                       \
            multiply_in_place(job, 0, job.m, 0, job.n);                                            \
    }                                                                                              \
    extern "C" void VOX_KERNEL(blas, p##gemmger) VOX_GEMM_PARAMETERS_X(T) {                        \
        VOX_KERNEL(blas, p##gemm_nocopy_driver) VOX_GEMM_ARGUMENTS_X;                              \
    }                                                                                              \
    extern "C" void VOX_KERNEL(blas, p##gemm_internal_team)(                                       \
        const vox::product<T> *job, vox::product_team *team, int rank, int size) {                 \
        multiply_in_team(p##strategy(0), *job, team, rank, size);                                  \
    }                                                                                              \
    extern "C" void VOX_KERNEL(blas, p##trmm)(const vox::triangle_product<T> *job) {               \
        trmm(p##strategy(0), *job);                                                                \
    }                                                                                              \
    extern "C" void VOX_KERNEL(blas, p##trsm)(const vox::triangle_product<T> *job) {               \
        trsm(p##strategy(0), *job);                                                                \
    }

#define VOX_GEMM_PARTS(p, T, ...) VOX_GEMM_PARTS_1(p, T, __VA_ARGS__)
#define VOX_GEMM_PARTS_1(p, T, rows, columns, strip)                                               \
    static_assert(rows == tile_rows<T> && columns == tile_width<T>);                               \
    extern "C" void VOX_PATH_NAME(p##gemm_kernel_0)(index_t depth, const T *alpha,                 \
                                                    const real_of<T> *a, const real_of<T> *b,      \
                                                    const T *beta, T *c, index_t ldc) {            \
        full_tile<T>(depth, a, b, a, {*alpha, *beta, c, ldc});                                     \
    }                                                                                              \
    extern "C" void VOX_PATH_NAME(p##gemm_kernel_0_b0)(index_t depth, const T *alpha,              \
                                                       const real_of<T> *a, const real_of<T> *b,   \
                                                       T *c, index_t ldc) {                        \
        full_tile<T>(depth, a, b, a, {*alpha, T{}, c, ldc});                                       \
    }                                                                                              \
    VOX_GEMM_COPY(p, T, copyan, tile_rows<T>, 1, false)                                            \
    VOX_GEMM_COPY(p, T, copyat, tile_rows<T>, 1, true)                                             \
    VOX_GEMM_COPY(p, T, copybn, tile_width<T>, b_copies<T>, true)                                  \
    VOX_GEMM_COPY(p, T, copybt, tile_width<T>, b_copies<T>, false)                                 \
    VOX_GEMM_STRIP(p, T, down##rows, tile_rows<T>, 1, copy_down)                                   \
    VOX_GEMM_STRIP(p, T, right##rows, tile_rows<T>, 1, copy_right)                                 \
    VOX_GEMM_STRIP(p, T, right##strip, tile_width<T>, b_copies<T>, copy_right)                     \
    VOX_GEMM_STRIP(p, T, down##strip, tile_width<T>, b_copies<T>, copy_down)                       \
    extern "C" void VOX_PATH_NAME(p##gemm_kernel_nocopy)(const vox::product<T> *job) {             \
        multiply_in_place(*job, 0, job->m, 0, job->n);                                             \
    }                                                                                              \
    VOX_GEMM_IN_PLACE(p, NN)                                                                       \
    VOX_GEMM_IN_PLACE(p, NT)                                                                       \
    VOX_GEMM_IN_PLACE(p, TN)                                                                       \
    VOX_GEMM_IN_PLACE(p, TT)                                                                       \
    VOX_IN_PLACE_NAME(p, p##gemm_nocopy_anbn_meq6_keq6)                                            \
    VOX_IN_PLACE_NAME(p, p##gemm_nocopy_anbn_meq6_keq6_b0)

// Rows (of op(A), columns of op(B)) 0 .. n - 1 as strips, depth steps each.
#define VOX_GEMM_COPY(p, T, name, width, copies, transposed)                                       \
    extern "C" void VOX_PATH_NAME(p##gemm_##name)(index_t n, index_t depth, const T *x,            \
                                                  index_t ld, real_of<T> *to) {                    \
        pack<T, width, copies>(factor<T>{x, ld, transposed}, 0, n, 0, depth,                       \
                               depth * strip_step<T, width, copies>, to);                          \
    }
#define VOX_GEMM_STRIP(p, T, name, width, copies, copy)                                            \
    extern "C" void VOX_PATH_NAME(p##gemm_##p##copy_##name##_ea)(                                  \
        index_t n, index_t depth, const T *x, index_t ld, real_of<T> *to) {                        \
        copy<T, width, copies>(x, ld, n, depth, false, to);                                        \
    }

// One function serves all: beta and the transposes are looked at once a tile.
#define VOX_GEMM_IN_PLACE(p, pair)                                                                 \
    VOX_IN_PLACE_NAME(p, p##gemm_kernel_nocopy_##pair##_bn)                                        \
    VOX_IN_PLACE_NAME(p, p##gemm_kernel_nocopy_##pair##_b1)                                        \
    VOX_IN_PLACE_NAME(p, p##gemm_kernel_nocopy_##pair##_b0)
#define VOX_IN_PLACE_NAME(p, name)                                                                 \
    VOX_EXPANDED_ALIAS(VOX_PATH_NAME(name), VOX_PATH_NAME(p##gemm_kernel_nocopy));
#define VOX_EXPANDED_ALIAS(name, existing) VOX_ALIAS(name, existing)
