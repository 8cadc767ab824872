/* dnn.h - neural-network primitives: tensor layouts, conversions between them, ReLU.
 *
 * A layout says how the elements of a tensor lie in memory. A primitive is one operation, checked and bound to its
 * layouts once and run any number of times, on buffers that are given by resource. docs/dnn.md has pictures and
 * an example.
 *
 * Every function exists for single precision (_F32) and for double precision (_F64); layouts and primitives of one
 * are not for the functions of the other. Functions return a status unless said otherwise, print nothing, and a
 * function that fails leaves what it would have handed out unchanged and nothing allocated. Layouts and primitives
 * never change after they are made, so any number of threads may use one at once. */
#ifndef VOX_DNN_H
#define VOX_DNN_H

#include "vox/types.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef void *dnnLayout_t;
typedef void *dnnPrimitive_t;
typedef void *dnnPrimitiveAttributes_t;

enum {
    DNN_STATUS_OK = 0,
    DNN_STATUS_BAD_ARGUMENT =
        -1, /* null where a pointer is needed, unknown kind or resource, layout that does not fit */
    DNN_STATUS_NULL_POINTER = -2, /* reserved */
    DNN_STATUS_NO_MEMORY = -3,
    DNN_STATUS_BAD_DIMENSION = -4, /* not between 1 and 32 */
    DNN_STATUS_NOT_IMPLEMENTED = -127
};

enum { DNN_MAX_DIMENSION = 32 };

/* Where a primitive finds its buffers: indices into the array that dnnExecute is given. */
enum {
    DNN_RES_SRC = 0,
    DNN_RES_DST = 1,
    DNN_RES_FILTER = 2,
    DNN_RES_SCALE_SHIFT = 2,
    DNN_RES_BIAS = 3,
    DNN_RES_MEAN = 3,
    DNN_RES_DIFF_SRC = 4,
    DNN_RES_DIFF_FILTER = 5,
    DNN_RES_DIFF_SCALE_SHIFT = 5,
    DNN_RES_DIFF_BIAS = 6,
    DNN_RES_VARIANCE = 6,
    DNN_RES_DIFF_DST = 7,
    DNN_RES_WORKSPACE = 8,
    DNN_RES_MULTIPLE_SRC = 16, /* the first of several */
    DNN_RES_MULTIPLE_DST = 24,
    DNN_RES_COUNT = 32
};

/*
 * Layouts
 */

/* A plain layout: element (x0, x1, ...) lies x0 strides[0] + x1 strides[1] + ... elements from the beginning of a
 * buffer. Sizes and strides are taken as they are. BAD_DIMENSION unless 1 <= dimension <= 32. */
VOX_API int dnnLayoutCreate_F32(dnnLayout_t *layout, size_t dimension, const size_t *size,
                                const size_t *strides);
VOX_API int dnnLayoutCreate_F64(dnnLayout_t *layout, size_t dimension, const size_t *size,
                                const size_t *strides);

/* A copy of the layout that a primitive expects of a resource; BAD_ARGUMENT for one that it does not use. */
VOX_API int dnnLayoutCreateFromPrimitive_F32(dnnLayout_t *layout, dnnPrimitive_t primitive,
                                             int resource);
VOX_API int dnnLayoutCreateFromPrimitive_F64(dnnLayout_t *layout, dnnPrimitive_t primitive,
                                             int resource);

/* The bytes of a buffer: the largest size[i] strides[i] of a plain layout. 0 for a null layout and for one that no
 * buffer can have (no dimensions or more than 32, block factors of 0); SIZE_MAX where the product overflows. */
VOX_API size_t dnnLayoutGetMemorySize_F32(dnnLayout_t layout);
VOX_API size_t dnnLayoutGetMemorySize_F64(dnnLayout_t layout);

/* 1 when the layouts are equal, 0 when they are not or one is null. */
VOX_API int dnnLayoutCompare_F32(dnnLayout_t a, dnnLayout_t b);
VOX_API int dnnLayoutCompare_F64(dnnLayout_t a, dnnLayout_t b);

/* Null is accepted. */
VOX_API int dnnLayoutDelete_F32(dnnLayout_t layout);
VOX_API int dnnLayoutDelete_F64(dnnLayout_t layout);

/* A layout as 1340 bytes, which any process may turn into a layout again. Deserialize takes any bytes: what they
 * say is checked where a layout is used, so that no operation leaves its buffers. */
VOX_API size_t dnnLayoutSerializationBufferSize_F32(void);
VOX_API size_t dnnLayoutSerializationBufferSize_F64(void);
VOX_API int dnnLayoutSerialize_F32(dnnLayout_t layout, void *buffer);
VOX_API int dnnLayoutSerialize_F64(dnnLayout_t layout, void *buffer);
VOX_API int dnnLayoutDeserialize_F32(dnnLayout_t *layout, const void *buffer);
VOX_API int dnnLayoutDeserialize_F64(dnnLayout_t *layout, const void *buffer);

/* A buffer of dnnLayoutGetMemorySize bytes, aligned to 64, not initialised. Null may be released. */
VOX_API int dnnAllocateBuffer_F32(void **buffer, dnnLayout_t layout);
VOX_API int dnnAllocateBuffer_F64(void **buffer, dnnLayout_t layout);
VOX_API int dnnReleaseBuffer_F32(void *buffer);
VOX_API int dnnReleaseBuffer_F64(void *buffer);

/*
 * Primitives
 */

/* Runs a primitive on buffers as large as their layouts ask for. A primitive never runs on two buffers that overlap,
 * unless they begin at the same place and it says that it may. */
VOX_API int dnnExecute_F32(dnnPrimitive_t primitive, void *resources[]);
VOX_API int dnnExecute_F64(dnnPrimitive_t primitive, void *resources[]);

/* Not in this library: NOT_IMPLEMENTED for every primitive, and nothing runs. */
VOX_API int dnnExecuteAsync_F32(dnnPrimitive_t primitive, void *resources[]);
VOX_API int dnnExecuteAsync_F64(dnnPrimitive_t primitive, void *resources[]);
VOX_API int dnnWaitFor_F32(dnnPrimitive_t primitive);
VOX_API int dnnWaitFor_F64(dnnPrimitive_t primitive);

/* Null is BAD_ARGUMENT. */
VOX_API int dnnDelete_F32(dnnPrimitive_t primitive);
VOX_API int dnnDelete_F64(dnnPrimitive_t primitive);

/* Attributes carry nothing: create and get write nothing, so a program sets its handle to null, and hands that to
 * create calls and to destroy. */
VOX_API int dnnPrimitiveAttributesCreate_F32(dnnPrimitiveAttributes_t *attributes);
VOX_API int dnnPrimitiveAttributesCreate_F64(dnnPrimitiveAttributes_t *attributes);
VOX_API int dnnPrimitiveGetAttributes_F32(dnnPrimitive_t primitive,
                                          dnnPrimitiveAttributes_t *attributes);
VOX_API int dnnPrimitiveGetAttributes_F64(dnnPrimitive_t primitive,
                                          dnnPrimitiveAttributes_t *attributes);
VOX_API int dnnPrimitiveAttributesDestroy_F32(dnnPrimitiveAttributes_t attributes);
VOX_API int dnnPrimitiveAttributesDestroy_F64(dnnPrimitiveAttributes_t attributes);

/*
 * Conversion: copies a tensor from one layout to another, element by element of their common order, in which the
 * first dimension varies fastest. Elements of the destination's buffer that are no elements of the tensor become 0
 * where the destination is an internal layout.
 */

VOX_API int dnnConversionCreate_F32(dnnPrimitive_t *conversion, dnnLayout_t from, dnnLayout_t to);
VOX_API int dnnConversionCreate_F64(dnnPrimitive_t *conversion, dnnLayout_t from, dnnLayout_t to);

/* dnnExecute with DNN_RES_SRC and DNN_RES_DST. */
VOX_API int dnnConversionExecute_F32(dnnPrimitive_t conversion, const void *from, void *to);
VOX_API int dnnConversionExecute_F64(dnnPrimitive_t conversion, const void *from, void *to);

/*
 * ReLU
 */

/* y = x where x > 0, and negative_slope x elsewhere: NaN becomes NaN, 0 becomes 0 negative_slope.
 * Reads DNN_RES_SRC, writes DNN_RES_DST, which may be the same buffer. Plain layouts, and images without border. */
VOX_API int dnnReLUCreateForward_F32(dnnPrimitive_t *primitive, dnnPrimitiveAttributes_t attributes,
                                     dnnLayout_t data, float negative_slope);
VOX_API int dnnReLUCreateForward_F64(dnnPrimitive_t *primitive, dnnPrimitiveAttributes_t attributes,
                                     dnnLayout_t data, double negative_slope);

/* dx = dy where x > 0, and negative_slope dy elsewhere. Reads DNN_RES_SRC (layout data) and DNN_RES_DIFF_DST, writes
 * DNN_RES_DIFF_SRC (both of layout diff), which may be the same buffer as either if the layouts are equal. */
VOX_API int dnnReLUCreateBackward_F32(dnnPrimitive_t *primitive,
                                      dnnPrimitiveAttributes_t attributes, dnnLayout_t diff,
                                      dnnLayout_t data, float negative_slope);
VOX_API int dnnReLUCreateBackward_F64(dnnPrimitive_t *primitive,
                                      dnnPrimitiveAttributes_t attributes, dnnLayout_t diff,
                                      dnnLayout_t data, double negative_slope);

#ifdef __cplusplus
}
#endif

#endif
