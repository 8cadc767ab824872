// kept.hpp - factors that a program keeps packed, of real products.
//
// Strips are those of packing.hpp. The depth blocks are those that a product of this depth is computed
// by, so that nothing is to be arranged anew; products that get no memory go through a part of a block
// at a time.
#pragma once

#include "blas/kernels/blocks.hpp"
#include "blas/kernels/packing.hpp"
#include "blas/packed_operand.hpp"

namespace {

template <class T>
VOX_INLINE bool is_kept(const factor<T> &f) {
    return !is_complex<T> && f.kind == structure::packed;
}
template <class T>
VOX_INLINE const vox::packed_head &head_of(const factor<T> &f) {
    return *reinterpret_cast<const vox::packed_head *>(f.data);
}

// Strips of reals, `pitch` from one to the next.
template <class T>
struct strips {
    const real_of<T> *first;
    index_t pitch;
};

// The steps from p on that lie in one block of a factor, at most `wanted`.
template <class T>
VOX_INLINE index_t steps_at_once(const factor<T> &f, index_t p, index_t wanted) {
    if (!is_kept(f))
        return wanted;
    const index_t block = head_of(f).block_depth;
    return least(wanted, block - p % block);
}

// The strips of a kept factor from row (or column) i and step p on; i is the first of a strip, W wide.
template <class T, int W, int Copies>
VOX_INLINE strips<T> kept_strips(const factor<T> &f, index_t i, index_t p) {
    constexpr index_t step = strip_step<T, W, Copies>;
    const vox::packed_head &head = head_of(f);
    const real_of<T> *const all =
        reinterpret_cast<const real_of<T> *>(reinterpret_cast<const char *>(&head) + head.start);
    const index_t inside = p % head.block_depth, block = p - inside;
    const index_t pitch = least(head.block_depth, head.depth - block) * step;
    return {all + block * head.strips * step + i / W * pitch + inside * step, pitch};
}

// Where the strips of a head's width, depth and side go; gives the bytes of the whole, or -1 if they
// cannot be counted.
template <class T>
index_t lay_out(const gemm_strategy &strategy, vox::packed_head *head) {
    const bool left = head->side == vox::packed_side::left;
    const index_t W = left ? tile_rows<T> : tile_width<T>;
    gemm_info info;
    set_blocks<T>(&strategy, 1, 1, head->depth, &info);
    head->strips = head->width / W + (head->width % W != 0);
    head->block_depth = info.kb;
    head->start = left ? a_offset : b_offset;
    static_assert(a_offset >= b_offset && b_offset >= index_t(sizeof(vox::packed_head)));
    index_t step, all;
    return __builtin_mul_overflow(head->strips, W * (left ? a_bytes<T> : b_bytes<T>), &step) ||
                   __builtin_mul_overflow(step, head->depth, &all) ||
                   __builtin_add_overflow(all, head->start, &all)
               ? -1
               : all;
}

template <class R>
VOX_INLINE void scale_strip(R *x, index_t n, R alpha) {
    const index_t whole = n - n % lanes<R>;
    for (index_t r = 0; r < whole; r += lanes<R>)
        store(x + r, load(x + r) * alpha);
    if (whole < n)
        store_partial(x + whole, load_partial(x + whole, n - whole) * alpha, n - whole);
}

// alpha times rows i0 .. i1 of a factor, into the strips of its place.
template <class T, int W, int Copies>
void pack_kept(const vox::packing_job<T> &job, index_t i0, index_t i1) {
    constexpr index_t step = strip_step<T, W, Copies>;
    const factor<T> to = {reinterpret_cast<const T *>(job.to), 0, false, false, structure::packed};
    for (index_t i = i0; i < i1; i += W) // a strip at a time, so that it is scaled while it is near
        for (index_t p = 0, depth; p < job.to->depth; p += depth) {
            depth = steps_at_once(to, p, job.to->depth - p);
            real_of<T> *const strip =
                const_cast<real_of<T> *>(kept_strips<T, W, Copies>(to, i, p).first);
            pack_strip<T, W, Copies>(job.source, i, least(W, i1 - i), p, p + depth, strip);
            if (job.alpha != vox::one<T>)
                scale_strip(strip, depth * step, job.alpha);
        }
}

// Part `part` of `parts` of the strips.
template <class T>
void pack_part(const vox::packing_job<T> &job, index_t part, index_t parts) {
    const auto pack = [&](auto width, auto copies) {
        const index_t first = job.to->strips * part / parts * width;
        const index_t end = job.to->strips * (part + 1) / parts * width;
        pack_kept<T, width, copies>(job, first, least(end, job.to->width));
    };
    if (job.to->side == vox::packed_side::left)
        pack(constant<tile_rows<T>>(), constant<1>());
    else
        pack(constant<tile_width<T>>(), constant<b_copies<T>>());
}

} // namespace

// The entry points, for a real precision.
#define VOX_KEPT_FACTORS(p, T)                                                                     \
    extern "C" vox::index_t VOX_KERNEL(blas, p##gemm_lay_out)(vox::packed_head * head) {           \
        return lay_out<T>(p##strategy(0), head);                                                   \
    }                                                                                              \
    extern "C" void VOX_KERNEL(blas, p##gemm_pack)(const vox::packing_job<T> *job,                 \
                                                   vox::index_t part, vox::index_t parts) {        \
        pack_part(*job, part, parts);                                                              \
    }
