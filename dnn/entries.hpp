// entries.hpp - the exported routines, one line each: name, result, parameters, arguments.
//
// dnn/entry.cpp makes the exported function and the dispatching entry from a line, VOX_DNN_KERNELS the copy
// of a code path, which calls the function template of the same name: dnnLayoutCreate_F32 goes through
// vox_dnn_LayoutCreate_F32 to vox_dnn_<path>_LayoutCreate_F32, which is LayoutCreate<float>.
#pragma once

#include "vox/dnn.h"

#define VOX_DNN_PRECISIONS(X) X(F32, float) X(F64, double)

#define VOX_DNN_LAYOUT_ENTRIES(X, P, T)                                                            \
    X(P, T, LayoutCreate, int,                                                                     \
      (dnnLayout_t * out, size_t dimension, const size_t *size, const size_t *strides),            \
      (out, dimension, size, strides))                                                             \
    X(P, T, LayoutGetMemorySize, size_t, (dnnLayout_t of), (of))                                   \
    X(P, T, LayoutCompare, int, (dnnLayout_t a, dnnLayout_t b), (a, b))                            \
    X(P, T, LayoutDelete, int, (dnnLayout_t of), (of))                                             \
    X(P, T, LayoutSerializationBufferSize, size_t, (), ())                                         \
    X(P, T, LayoutSerialize, int, (dnnLayout_t of, void *buffer), (of, buffer))                    \
    X(P, T, LayoutDeserialize, int, (dnnLayout_t * out, const void *buffer), (out, buffer))        \
    X(P, T, AllocateBuffer, int, (void **out, dnnLayout_t of), (out, of))                          \
    X(P, T, ReleaseBuffer, int, (void *buffer), (buffer))

#define VOX_DNN_PRIMITIVE_ENTRIES(X, P, T)                                                         \
    X(P, T, LayoutCreateFromPrimitive, int, (dnnLayout_t * out, dnnPrimitive_t of, int resource),  \
      (out, of, resource))                                                                         \
    X(P, T, Execute, int, (dnnPrimitive_t of, void *resources[]), (of, resources))                 \
    X(P, T, ExecuteAsync, int, (dnnPrimitive_t of, void *resources[]), (of, resources))            \
    X(P, T, WaitFor, int, (dnnPrimitive_t of), (of))                                               \
    X(P, T, Delete, int, (dnnPrimitive_t of), (of))                                                \
    X(P, T, PrimitiveAttributesCreate, int, (dnnPrimitiveAttributes_t * out), (out))               \
    X(P, T, PrimitiveGetAttributes, int, (dnnPrimitive_t of, dnnPrimitiveAttributes_t * out),      \
      (of, out))                                                                                   \
    X(P, T, PrimitiveAttributesDestroy, int, (dnnPrimitiveAttributes_t of), (of))

#define VOX_DNN_CONVERSION_ENTRIES(X, P, T)                                                        \
    X(P, T, ConversionCreate, int,                                                                 \
      (dnnPrimitive_t * out, dnnLayout_t source, dnnLayout_t destination),                         \
      (out, source, destination))                                                                  \
    X(P, T, ConversionExecute, int, (dnnPrimitive_t of, const void *from, void *to), (of, from, to))

#define VOX_DNN_RELU_ENTRIES(X, P, T)                                                              \
    X(P, T, ReLUCreateForward, int,                                                                \
      (dnnPrimitive_t * out, dnnPrimitiveAttributes_t attributes, dnnLayout_t data, T slope),      \
      (out, attributes, data, slope))                                                              \
    X(P, T, ReLUCreateBackward, int,                                                               \
      (dnnPrimitive_t * out, dnnPrimitiveAttributes_t attributes, dnnLayout_t diff,                \
       dnnLayout_t data, T slope),                                                                 \
      (out, attributes, diff, data, slope))

#define VOX_DNN_ENTRIES(X, P, T)                                                                   \
    VOX_DNN_LAYOUT_ENTRIES(X, P, T)                                                                \
    VOX_DNN_PRIMITIVE_ENTRIES(X, P, T)                                                             \
    VOX_DNN_CONVERSION_ENTRIES(X, P, T)                                                            \
    VOX_DNN_RELU_ENTRIES(X, P, T)

// The copies of this path of a list's entries, for kernel sources; the templates are those of namespace dnn.
#define VOX_DNN_KERNEL(P, T, name, result, parameters, arguments)                                  \
    extern "C" result VOX_KERNEL_NAMED(dnn, name##_##P) parameters {                               \
        return dnn::name<T> arguments;                                                             \
    }
#define VOX_DNN_KERNELS(list) list(VOX_DNN_KERNEL, F32, float) list(VOX_DNN_KERNEL, F64, double)
