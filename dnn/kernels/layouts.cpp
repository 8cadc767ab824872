// layouts.cpp - the operations on layouts. The functions that a layout holds are those of its path's copy.
#include "dnn/entries.hpp"
#include "dnn/layout.hpp"
#include "serv/kernel.hpp"

namespace {
namespace dnn {

template <class T>
int LayoutCreate(dnnLayout_t *out, size_t dimension, const size_t *size, const size_t *strides) {
    if (!out || !size || !strides)
        return DNN_STATUS_BAD_ARGUMENT;
    if (dimension < 1 || dimension > vox::dnn::max_dims)
        return DNN_STATUS_BAD_DIMENSION;
    layout *const l = allocate<layout>();
    if (!l)
        return DNN_STATUS_NO_MEMORY;
    if (const int status = fill_plain<T>(l, 0, dimension, size, strides)) {
        vox_serv_free(l);
        return status;
    }
    *out = l;
    return DNN_STATUS_OK;
}

template <class T>
size_t LayoutGetMemorySize(dnnLayout_t of) {
    return of ? memory_bytes(*static_cast<const layout *>(of)) : 0;
}

template <class T>
int LayoutCompare(dnnLayout_t a, dnnLayout_t b) {
    return a && b && equal(*static_cast<const layout *>(a), *static_cast<const layout *>(b));
}

template <class T>
int LayoutDelete(dnnLayout_t of) {
    if (of && static_cast<const layout *>(of)->flags != 0)
        return DNN_STATUS_BAD_ARGUMENT;
    vox_serv_free(of);
    return DNN_STATUS_OK;
}

template <class T>
size_t LayoutSerializationBufferSize() {
    return vox::dnn::serialized_bytes;
}

template <class T>
int LayoutSerialize(dnnLayout_t of, void *buffer) {
    if (!of || !buffer)
        return DNN_STATUS_BAD_ARGUMENT;
    const uint32_t size = vox::dnn::image_size;
    memcpy(buffer, &size, sizeof size);
    vox_serv_memcpy_s(static_cast<char *>(buffer) + sizeof size, size, of, size);
    return DNN_STATUS_OK;
}

template <class T>
int LayoutDeserialize(dnnLayout_t *out, const void *buffer) {
    uint32_t size;
    layout image;
    if (!out || !buffer)
        return DNN_STATUS_BAD_ARGUMENT;
    memcpy(&size, buffer, sizeof size);
    if (size != vox::dnn::image_size)
        return DNN_STATUS_BAD_ARGUMENT;
    memcpy(&image, static_cast<const char *>(buffer) + sizeof size, sizeof image);
    return bind_functions(image) ? hand_out(out, image) : DNN_STATUS_BAD_ARGUMENT;
}

template <class T>
int AllocateBuffer(void **out, dnnLayout_t of) {
    if (!out || !of || static_cast<const layout *>(of)->flags != 0)
        return DNN_STATUS_BAD_ARGUMENT;
    const size_t bytes = memory_bytes(*static_cast<const layout *>(of));
    if (bytes == 0)
        return DNN_STATUS_BAD_ARGUMENT;
    void *const buffer = vox_serv_malloc(bytes, 64);
    if (!buffer)
        return DNN_STATUS_NO_MEMORY;
    *out = buffer;
    return DNN_STATUS_OK;
}

template <class T>
int ReleaseBuffer(void *buffer) {
    vox_serv_free(buffer);
    return DNN_STATUS_OK;
}

} // namespace dnn
} // namespace

VOX_DNN_KERNELS(VOX_DNN_LAYOUT_ENTRIES)

// For primitives, which fill layouts in storage of their own.
#define FILLS(P, T)                                                                                \
    extern "C" int VOX_KERNEL_NAMED(dnn, LayoutFillSimple_##P)(                                    \
        vox::dnn::layout * l, uint32_t flags, uint64_t ndims, const uint64_t *size,                \
        const uint64_t *stride) {                                                                  \
        return dnn::fill_plain<T>(l, flags, ndims, size, stride);                                  \
    }                                                                                              \
    extern "C" int VOX_KERNEL_NAMED(dnn, LayoutFillBlk_##P)(                                       \
        vox::dnn::layout * l, uint32_t flags, uint64_t ndims, const uint64_t *size,                \
        const uint64_t *block, const uint64_t *strides, uint64_t base_offset) {                    \
        return dnn::fill_blocked<T>(l, flags, ndims, size, block, strides, base_offset);           \
    }
VOX_DNN_PRECISIONS(FILLS)
