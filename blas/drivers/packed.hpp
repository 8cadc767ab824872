// packed.hpp - factors that a program keeps packed: their buffers, and the calls that use them.
//
// A buffer has room for either side of a product, since a factor of a row-major product is the other
// factor of its transpose, and nobody says at its allocation which layout will be used.
#pragma once

#include "blas/drivers/level3.hpp"
#include "blas/drivers/team.hpp"
#include "blas/packed_operand.hpp"
#include "serv/code_paths.hpp"
#include "vox/service.h"

namespace vox::packed {

// The head of a buffer of this precision; null if it is none.
template <class T>
packed_head *head_of(const T *buffer) {
    packed_head *const head = reinterpret_cast<packed_head *>(const_cast<T *>(buffer));
    const bool right = head && uintptr_t(head) % packed_head::page == 0 &&
                       head->magic == packed_head::right_magic &&
                       head->element_bytes == int32_t(sizeof(T)) &&
                       head->path == int32_t(this_code_path());
    return right ? head : nullptr;
}

// Whether a buffer is for a factor of this width and depth, and whether it holds one.
template <class T>
bool fits(const T *buffer, index_t width, index_t depth) {
    const packed_head *const head = head_of(buffer);
    return head && head->width == width && head->depth == depth;
}
template <class T>
bool holds(const T *buffer, packed_side side, index_t width, index_t depth) {
    return fits(buffer, width, depth) && head_of(buffer)->side == side;
}

// lay_out(head): the kernels' arrangement for the head's side, and the bytes that it takes, or -1.
template <class T, class LayOut>
T *allocate(LayOut lay_out, index_t width, index_t depth) {
    packed_head head = {packed_head::right_magic,
                        int32_t(this_code_path()),
                        int32_t(sizeof(T)),
                        packed_side::left,
                        false,
                        width,
                        depth};
    const index_t as_left = lay_out(&head);
    head.side = packed_side::right;
    const index_t as_right = lay_out(&head), bytes = as_left < as_right ? as_right : as_left;
    if (as_left < 0 || as_right < 0)
        return nullptr;
    void *const buffer = vox_serv_malloc(size_t(bytes), size_t(packed_head::page));
    head.side = packed_side::none;
    if (buffer)
        *static_cast<packed_head *>(buffer) = head;
    return static_cast<T *>(buffer);
}

// alpha times the source, as one side of a product. `pack` packs a part of the strips.
template <class T, class LayOut, class Pack>
void pack(LayOut lay_out, Pack pack_part, packed_head *head, packed_side side, factor<T> source,
          T alpha) {
    head->side = side;
    head->zero = is_zero(alpha);
    const index_t bytes = lay_out(head);
    if (head->zero)
        return;
    if (side == packed_side::right)
        source.transposed = !source.transposed;
    const packing_job<T> job = {source, alpha, head};
    const index_t parts = team_for(bytes);
    for_parts(parts, [&](index_t part) { pack_part(&job, part, parts); });
}

// The factor that a buffer holds; what it is to be multiplied by goes to alpha.
template <class T>
factor<T> kept_factor(const T *buffer, T &alpha) {
    if (reinterpret_cast<const packed_head *>(buffer)->zero)
        alpha = T{};
    return {buffer, 0, false, false, structure::packed};
}

// What was freed is no buffer any more.
template <class T>
void release(T *buffer) {
    if (packed_head *const head = head_of(buffer))
        head->magic = 0;
    vox_serv_free(buffer);
}

} // namespace vox::packed
