// layout.hpp - the layout record: how the elements of a tensor lie in memory, and what follows from it.
//
// The record is its own serialized form, so its byte image is fixed. An image from outside may say
// anything. Nothing here trusts it: sums and products are clamped to `overflowed`, arrays are never
// indexed beyond their 32 dimensions, and what would divide by zero or leave a buffer of memory_bytes()
// does not pass fits(), which every create call asks before a layout is walked through.
//
// Kernels include this file, so every function has internal linkage.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include "serv/base.hpp"
#include "vox/dnn.h"
#include "vox/service.h"

namespace vox::dnn {

constexpr uint64_t max_dims = DNN_MAX_DIMENSION;

enum kind : uint32_t { plain, orb_data, orb_filter_fwd, orb_filter_bwd, blocked };

struct layout;
using span_function = uint64_t(const layout *);
using offset_function = uint64_t(const layout *, uint64_t n);

// Sizes, strides, borders and offsets are in elements.
struct layout {
    uint32_t kind;
    uint32_t flags; // not 0: a primitive's own, which users can neither delete nor convert
    uint64_t ndims;
    uint64_t size[max_dims];
    uint64_t stride[max_dims]; // kinds 0 to 3
    uint64_t elem_size;
    span_function *span;     // the elements of a buffer
    offset_function *offset; // of the n-th element, dimension 0 varying fastest
    union {
        uint64_t border1;    // kinds 1 to 3: around dimension 1
        uint64_t split_dims; // kind 4: ndims, and one more for each dimension in blocks
    };
    union {
        uint64_t border2; // kinds 1 to 3: around dimension 2
        uint64_t block[max_dims];
    };
    struct {
        uint64_t outer, inner; // between blocks, within a block
    } blocked_stride[max_dims];
    uint64_t base_offset; // kind 4
};
static_assert(sizeof(layout) == 1336 && alignof(layout) == 8);
static_assert(offsetof(layout, kind) == 0 && offsetof(layout, flags) == 4);
static_assert(offsetof(layout, ndims) == 8 && offsetof(layout, size) == 16);
static_assert(offsetof(layout, stride) == 272 && offsetof(layout, elem_size) == 528);
static_assert(offsetof(layout, span) == 536 && offsetof(layout, offset) == 544);
static_assert(offsetof(layout, border1) == 552 && offsetof(layout, split_dims) == 552);
static_assert(offsetof(layout, border2) == 560 && offsetof(layout, block) == 560);
static_assert(offsetof(layout, blocked_stride) == 816 && offsetof(layout, base_offset) == 1328);

// A layout as it is stored: the record's size and the record.
constexpr uint32_t image_size = sizeof(layout);
constexpr size_t serialized_bytes = sizeof image_size + sizeof(layout);
static_assert(serialized_bytes == 1340);

} // namespace vox::dnn

namespace {
namespace dnn {

using vox::dnn::layout;

// A count that no memory has.
constexpr uint64_t overflowed = UINT64_MAX;

inline uint64_t times(uint64_t a, uint64_t b) {
    uint64_t product;
    return __builtin_mul_overflow(a, b, &product) ? overflowed : product;
}
inline uint64_t plus(uint64_t a, uint64_t b) {
    uint64_t sum;
    return __builtin_add_overflow(a, b, &sum) ? overflowed : sum;
}
inline uint64_t larger(uint64_t a, uint64_t b) { return a > b ? a : b; }

// The dimensions that have a place in the record.
inline uint64_t dims(const layout &l) {
    return l.ndims < vox::dnn::max_dims ? l.ndims : vox::dnn::max_dims;
}

// The size of a dimension that need not be there.
inline uint64_t size_of(const layout &l, uint64_t i) { return i < dims(l) ? l.size[i] : 1; }

// What a border on either side leaves.
inline uint64_t inside(uint64_t size, uint64_t border) {
    return border <= size / 2 ? size - 2 * border : 0;
}
inline uint64_t inner_width(const layout &l) { return inside(size_of(l, 1), l.border1); }
inline uint64_t inner_height(const layout &l) { return inside(size_of(l, 2), l.border2); }

inline uint64_t span_plain(const layout *l) {
    uint64_t span = 0;
    for (uint64_t i = 0; i < dims(*l); ++i)
        span = larger(span, times(l->size[i], l->stride[i]));
    return span;
}

// The sizes of an image include its borders.
inline uint64_t span_orb_data(const layout *l) {
    uint64_t span = 1;
    for (uint64_t i = 0; i < dims(*l); ++i)
        span = times(span, l->size[i]);
    return span;
}

// 0 where a block factor is.
inline uint64_t span_blocked(const layout *l) {
    uint64_t span = 0;
    for (uint64_t i = 0; i < dims(*l); ++i) {
        if (l->block[i] == 0)
            return 0;
        span = larger(span, times(l->size[i] / l->block[i], l->blocked_stride[i].outer));
        span = larger(span, times(l->size[i] % l->block[i], l->blocked_stride[i].inner));
    }
    return span;
}

inline uint64_t offset_plain(const layout *l, uint64_t n) {
    uint64_t offset = 0;
    for (uint64_t i = 0; i < l->ndims; ++i) {
        offset += n % l->size[i] * l->stride[i];
        n /= l->size[i];
    }
    return offset;
}

// In the order of width, height, dimension 0, dimension 3, dimension 4; the border is skipped.
inline uint64_t offset_orb_data(const layout *l, uint64_t n) {
    const uint64_t width = inner_width(*l), height = inner_height(*l), group = size_of(*l, 0);
    const uint64_t x = l->border1 + n % width;
    n /= width;
    const uint64_t y = l->border2 + n % height;
    n /= height;
    uint64_t offset = x * l->stride[1] + y * l->stride[2];
    if (l->ndims == 5) {
        const uint64_t image = l->size[3] * group;
        offset += n / image * l->stride[4];
        n %= image;
    }
    return offset + n % group * l->stride[0] + n / group * l->stride[3];
}

inline uint64_t offset_blocked(const layout *l, uint64_t n) {
    uint64_t offset = l->base_offset;
    for (uint64_t i = 0; i < l->ndims; ++i) {
        const uint64_t x = n % l->size[i], block = l->block[i];
        n /= l->size[i];
        offset += x / block * l->blocked_stride[i].outer + x % block * l->blocked_stride[i].inner;
    }
    return offset;
}

// Sets the functions that the kind asks for; false for a kind that does not exist.
inline bool bind_functions(layout &l) {
    switch (l.kind) {
    case vox::dnn::plain:
        l.span = span_plain, l.offset = offset_plain;
        return true;
    case vox::dnn::orb_data:
        l.span = span_orb_data, l.offset = offset_orb_data;
        return true;
    case vox::dnn::orb_filter_fwd:
    case vox::dnn::orb_filter_bwd:
    case vox::dnn::blocked:
        l.span = span_blocked, l.offset = offset_blocked;
        return true;
    }
    return false;
}

// What dnnLayoutGetMemorySize says: the strides decide for the internal layouts too.
inline uint64_t memory_bytes(const layout &l) {
    if (l.ndims == 0 || l.ndims > vox::dnn::max_dims)
        return 0;
    return times(l.kind < vox::dnn::blocked ? span_plain(&l) : l.span(&l), l.elem_size);
}

// The elements of the tensor, without borders.
inline uint64_t element_count(const layout &l) {
    uint64_t count = 1;
    for (uint64_t i = 0; i < dims(l); ++i)
        count = times(count, l.size[i]);
    if (l.kind == vox::dnn::orb_data && (l.border1 | l.border2) != 0) {
        count = times(inner_width(l), inner_height(l));
        for (uint64_t i = 0; i < dims(l); ++i)
            count = i == 1 || i == 2 ? count : times(count, l.size[i]);
    }
    return count;
}

// An upper bound of the offsets of the first `count` elements, count > 0; `overflowed` where there is
// none, or a size or block factor of 0 to divide by.
inline uint64_t last_offset(const layout &l, uint64_t count) {
    for (uint64_t i = 0; i < dims(l); ++i)
        if (l.size[i] == 0 || (l.kind > vox::dnn::orb_data && l.block[i] == 0))
            return overflowed;
    uint64_t last = 0;
    const auto add = [&last](uint64_t x, uint64_t stride) { last = plus(last, times(x, stride)); };
    switch (l.kind) {
    case vox::dnn::plain:
        for (uint64_t i = 0; i < dims(l); ++i)
            add(l.size[i] - 1, l.stride[i]);
        return last;
    case vox::dnn::orb_data: {
        const uint64_t width = inner_width(l), height = inner_height(l), group = size_of(l, 0);
        const uint64_t image = times(size_of(l, 3), group);
        if (width == 0 || height == 0 || image == overflowed)
            return overflowed;
        add(l.border1 + width - 1, l.stride[1]);
        add(l.border2 + height - 1, l.stride[2]);
        const uint64_t n = (count - 1) / width / height;
        if (l.ndims == 5)
            add(n / image, l.stride[4]);
        add(group - 1, l.stride[0]);
        add(l.ndims == 5 ? size_of(l, 3) - 1 : n / group, l.stride[3]);
        return last;
    }
    default:
        last = l.base_offset;
        for (uint64_t i = 0; i < dims(l); ++i) {
            // The end of the last block, or of the one before, which may be longer.
            const uint64_t q = (l.size[i] - 1) / l.block[i], r = (l.size[i] - 1) % l.block[i];
            const auto [outer, inner] = l.blocked_stride[i];
            const uint64_t end = plus(times(q, outer), times(r, inner));
            const uint64_t before =
                q == 0 ? 0 : plus(times(q - 1, outer), times(l.block[i] - 1, inner));
            last = plus(last, larger(end, before));
        }
        return last;
    }
}

// Whether the first `count` elements of the tensor, and the whole span, lie within a buffer of
// memory_bytes() for elements of type T, so that walking through them is safe.
template <class T>
inline bool fits(const layout &l, uint64_t count) {
    const uint64_t bytes = memory_bytes(l);
    if (l.ndims == 0 || l.ndims > vox::dnn::max_dims || l.elem_size != sizeof(T) ||
        bytes > uint64_t(INT64_MAX) || times(l.span(&l), sizeof(T)) > bytes)
        return false;
    return count == 0 || times(plus(last_offset(l, count), 1), sizeof(T)) <= bytes;
}

// The same for a tensor that is written, all of it: no more elements than the buffer has places.
template <class T>
inline bool takes(const layout &l) {
    const uint64_t count = element_count(l);
    return fits<T>(l, count) && count <= memory_bytes(l) / sizeof(T);
}

// stride[i] of a layout without gaps, dimension 0 fastest: what comes before dimension i.
inline bool is_dense(const layout &l) {
    uint64_t product = 1;
    for (uint64_t i = 0; i < dims(l); ++i) {
        if (l.stride[i] != product)
            return false;
        product = times(product, l.size[i]);
    }
    return true;
}

inline bool equal_words(const uint64_t *a, const uint64_t *b, uint64_t n) {
    return memcmp(a, b, n * sizeof *a) == 0;
}

inline bool equal(const layout &a, const layout &b) {
    if (a.kind != b.kind || a.ndims != b.ndims || a.kind > vox::dnn::blocked)
        return false;
    const uint64_t n = dims(a);
    if (!equal_words(a.size, b.size, n))
        return false;
    if (a.kind == vox::dnn::blocked)
        return a.flags == b.flags && a.elem_size == b.elem_size &&
               equal_words(a.block, b.block, n) &&
               memcmp(a.blocked_stride, b.blocked_stride, n * sizeof a.blocked_stride[0]) == 0 &&
               a.base_offset == b.base_offset;
    return equal_words(a.stride, b.stride, n) &&
           (a.kind == vox::dnn::plain || (a.border1 == b.border1 && a.border2 == b.border2));
}

// What every kind has in common. The rest of the record is cleared, so that images hold nothing else.
template <class T>
inline int fill_common(layout *l, uint32_t kind, uint32_t flags, uint64_t ndims,
                       const uint64_t *size) {
    if (!l || !size)
        return DNN_STATUS_BAD_ARGUMENT;
    if (ndims > vox::dnn::max_dims)
        return DNN_STATUS_BAD_DIMENSION;
    memset(l, 0, sizeof *l);
    l->kind = kind, l->flags = flags, l->ndims = ndims, l->elem_size = sizeof(T);
    memcpy(l->size, size, ndims * sizeof *size);
    bind_functions(*l);
    return DNN_STATUS_OK;
}

// A plain layout, without gaps where strides are null.
template <class T>
inline int fill_plain(layout *l, uint32_t flags, uint64_t ndims, const uint64_t *size,
                      const uint64_t *stride) {
    if (const int status = fill_common<T>(l, vox::dnn::plain, flags, ndims, size))
        return status;
    for (uint64_t i = 0; i < ndims; ++i)
        l->stride[i] = stride ? stride[i] : i == 0 ? 1 : l->stride[i - 1] * size[i - 1];
    return DNN_STATUS_OK;
}

// A blocked layout: `strides` has two words for each dimension, outer and inner. Without blocks and strides the
// words are a running product and ones, in the order of the record.
template <class T>
inline int fill_blocked(layout *l, uint32_t flags, uint64_t ndims, const uint64_t *size,
                        const uint64_t *block, const uint64_t *strides, uint64_t base_offset) {
    if (!block != !strides)
        return DNN_STATUS_BAD_ARGUMENT;
    if (const int status = fill_common<T>(l, vox::dnn::blocked, flags, ndims, size))
        return status;
    l->base_offset = base_offset;
    l->split_dims = ndims;
    uint64_t words[2 * vox::dnn::max_dims];
    for (uint64_t i = 0; i < ndims; ++i) {
        l->block[i] = block ? block[i] : 1;
        l->split_dims += l->block[i] != 1;
        words[i] = i == 0 ? 1 : words[i - 1] * size[i];
        words[ndims + i] = 1;
    }
    memcpy(l->blocked_stride, strides ? strides : words, 2 * ndims * sizeof *words);
    return DNN_STATUS_OK;
}

// An object on the heap, as every create call makes it; null when there is no memory.
template <class Object>
inline Object *allocate() {
    return static_cast<Object *>(vox_serv_malloc(sizeof(Object), 64));
}

// A copy for the user.
inline int hand_out(dnnLayout_t *out, const layout &l) {
    layout *const copy = allocate<layout>();
    if (!copy)
        return DNN_STATUS_NO_MEMORY;
    *copy = l;
    *out = copy;
    return DNN_STATUS_OK;
}

} // namespace dnn
} // namespace
